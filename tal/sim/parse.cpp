#include "tal/sim/parse.h"

#include "tal/sim/read_sections.h"

namespace tal::sim {
namespace {

Scenario readScenario(const Node& document) {
  TableReader root(document, "the scenario");
  ItemBudget budget;
  Scenario scenario;
  readInformation(root, scenario.information);
  readVersion(root, scenario.version);
  readUsage(root, scenario.usage);
  readCommunication(root, scenario.communication, budget);
  readFiles(root, scenario.files, budget);
  readClients(root, scenario.clients, budget);
  readSqlConnections(root, scenario.sqlConnections, budget);
  readFaults(root, scenario.faults);
  root.finish();
  return scenario;
}

}  // namespace

Scenario parseScenario(std::string_view text, std::string_view name) {
  try {
    return readScenario(parseDocument(text));
  } catch (const ScenarioError& error) {
    throw error.in(name);
  }
}

}  // namespace tal::sim
