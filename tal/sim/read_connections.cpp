#include "tal/sim/read_sections.h"

namespace tal::sim {

void readSqlConnections(TableReader& root, std::vector<SqlConnectionEntry>& connections,
                        ItemBudget& budget) {
  for (const Node* const node : root.tables("sql_connection")) {
    TableReader table(*node, "[[sql_connection]]");
    SqlConnectionEntry& connection = connections.emplace_back();
    table.read("client_host", connection.clientHost);
    table.read("data_source", connection.dataSource);
    table.read("application", connection.application);
    table.read("network_address", connection.networkAddress);
    table.read("user_name", connection.userName);
    table.read("status", connection.status, kConnectionStatusWords);
    table.read("period_ms", connection.periodMs);
    table.read("total_time", connection.totalTime);
    readPresence(table, connection.presence, budget);
    table.finish();
  }
}

}  // namespace tal::sim
