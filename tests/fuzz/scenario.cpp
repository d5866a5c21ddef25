// Scenario files, and what the simulated engine makes of them.
#include "tal/sim/scenario.h"

#include <cstdint>
#include <memory>
#include <string_view>

#include "tal/interface/served_engine.h"
#include "tal/sim/document.h"
#include "tal/sim/read_scenario.h"
#include "tal/sim/sim.h"
#include "tests/fuzz/served.h"
#include "tests/fuzz/target.h"

namespace fuzzing {
namespace {

using tal::Call;
using tal::sim::Scenario;

// More would only repeat the same items.
constexpr std::uint64_t kMostItems = 500;

std::uint64_t itemsOf(const Scenario& scenario) {
  std::uint64_t items = 0;
  const auto add = [&](const auto& entries, std::uint64_t owners) {
    for (const auto& entry : entries) items += owners * entry.presence.count.largest();
  };
  add(scenario.communication.protocols, 1);
  add(scenario.files, 1);
  add(scenario.clients, 1);
  add(scenario.sqlConnections, 1);
  for (const auto& file : scenario.files) add(file.handles, file.presence.count.largest());
  for (const auto& client : scenario.clients) add(client.handles, client.presence.count.largest());
  return items;
}

// The call is served, or answered with another status as the scenario wants it.
template <typename Action>
void ask(tal::interface::ServedEngine& served, Call call, const Action& action) {
  try {
    served.admit(call);
    action(served.engine());
  } catch (const tal::Failure& failure) {
    require(failure.status() != tal::Status::kSuccess, "a failure has a status");
  }
}

void refresh(tal::interface::ServedEngine& served) {
  using tal::Engine;
  ask(served, Call::kGetOpenFilesData, [](Engine& engine) { serve(engine.openFiles()); });
  ask(served, Call::kGetZorbClientsData, [](Engine& engine) { serve(engine.clients()); });
  ask(served, Call::kGetSQLConnectionsData, [](Engine& engine) { serve(engine.sqlConnections()); });
  ask(served, Call::kGetZorbUsageEx2, [](Engine& engine) { serve(engine.usage()); });
  ask(served, Call::kGetZorbCommStatEx, [](Engine& engine) { serve(engine.communication()); });
  ask(served, Call::kGetZorbVersion, [](Engine& engine) { engine.version(); });
  ask(served, Call::kGetEngineInformation, [](Engine& engine) { engine.information(); });
}

}  // namespace

void run(std::string_view input) {
  try {
    Scenario scenario = tal::sim::parseScenario(input, "scenario");
    if (itemsOf(scenario) > kMostItems) return;
    tal::interface::ServedEngine served(
        std::make_unique<tal::sim::SimulatedEngine>(std::move(scenario)));
    for (int i = 0; i < 3; ++i) refresh(served);
  } catch (const tal::sim::ScenarioError& error) {
    requireClean(error.what());
    require(std::string_view(error.what()).starts_with("scenario"), "a mistake names its file");
  }
}

}  // namespace fuzzing
