#include "tal/sim/sim.h"

#include <cstdio>
#include <string>

#include "tal/sim/demo.h"
#include "tal/sim/engine.h"
#include "tal/sim/load.h"
#include "tal/sim/parse.h"

namespace tal::sim {
namespace {

Scenario scenarioIn(const std::string& path) {
  std::string text;
  try {
    text = readFile(path);
  } catch (const ScenarioError& error) {
    throw error.in(path);
  }
  return parseScenario(text, path);
}

}  // namespace

std::unique_ptr<Engine> open(std::string_view location, const Credentials& /*credentials*/) {
  if (location == "demo") return openDemo();
  try {
    return std::make_unique<SimulatedEngine>(scenarioIn(std::string(location)));
  } catch (const ScenarioError& error) {
    // The status says only that the scenario is wrong; a line number has no other way out.
    std::fprintf(stderr, "libtal: %s\n", error.what());
    throw Failure(Status::kScenarioWrong);
  }
}

std::unique_ptr<Engine> openDemo() {
  return std::make_unique<SimulatedEngine>(parseScenario(kDemo, "demo"));
}

}  // namespace tal::sim
