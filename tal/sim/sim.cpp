#include "tal/sim/sim.h"

#include <cstdio>
#include <string>
#include <utility>

#include "tal/sim/read_scenario.h"

namespace tal::sim {

SimulatedEngine::SimulatedEngine(Scenario scenario)
    : scenario_(std::move(scenario)), calls_(scenario_.faults) {}

Information SimulatedEngine::information() {
  return informationAt(scenario_.information, calls_.refresh(Call::kGetEngineInformation));
}

Version SimulatedEngine::version() {
  return versionAt(scenario_.version, calls_.refresh(Call::kGetZorbVersion));
}

Usage SimulatedEngine::usage() {
  return usageAt(scenario_.usage, calls_.refresh(Call::kGetZorbUsageEx2));
}

Communication SimulatedEngine::communication() {
  return communicationAt(scenario_.communication, calls_.refresh(Call::kGetZorbCommStatEx));
}

std::vector<OpenFile> SimulatedEngine::openFiles() {
  return filesAt(scenario_.files, calls_.refresh(Call::kGetOpenFilesData));
}

std::vector<Client> SimulatedEngine::clients() {
  return clientsAt(scenario_.clients, calls_.refresh(Call::kGetZorbClientsData));
}

std::vector<SqlConnection> SimulatedEngine::sqlConnections() {
  return sqlConnectionsAt(scenario_.sqlConnections, calls_.refresh(Call::kGetSQLConnectionsData));
}

Status SimulatedEngine::answerInstead(Call call) { return calls_.count(call); }

std::unique_ptr<Engine> open(std::string_view location, const Credentials& /*credentials*/) {
  if (location == "demo") return openDemo();
  try {
    return std::make_unique<SimulatedEngine>(scenarioIn(std::string(location)));
  } catch (const ScenarioError& error) {
    // The status says only that the scenario is wrong. Only this line gives the line number.
    std::fprintf(stderr, "libtal: %s\n", error.what());
    throw Failure(Status::kScenarioWrong);
  }
}

std::unique_ptr<Engine> openDemo() {
  return std::make_unique<SimulatedEngine>(parseScenario(kDemo, "demo"));
}

}  // namespace tal::sim
