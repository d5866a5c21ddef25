#include "tal/sim/read_sections.h"

namespace tal::sim {

void readClients(TableReader& root, std::vector<ClientEntry>& clients, ItemBudget& budget) {
  for (const Node* const node : root.tables("client")) {
    TableReader table(*node, "[[client]]");
    ClientEntry& client = clients.emplace_back();
    table.require("id");
    table.read("id", client.id);
    table.read("first_number", client.firstNumber);
    table.read("task_number", client.taskNumber);
    table.read("site", client.site, kSiteWords);
    table.read("network_address", client.networkAddress);
    table.read("reserved", client.reserved);
    table.read("records_deleted", client.recordsDeleted);
    table.read("records_updated", client.recordsUpdated);
    table.read("records_inserted", client.recordsInserted);
    table.read("records_read", client.recordsRead);
    table.read("disk_accesses", client.diskAccesses);
    table.read("cache_accesses", client.cacheAccesses);
    table.read("locks_used", client.locksUsed);
    table.read("transaction_state", client.transactionState, kTransactionStateWords);
    table.read("process_id", client.processId);
    table.read("connection_number", client.connectionNumber);
    table.read("session_name", client.sessionName);
    readPresence(table, client.presence, budget);
    readHandles(table, client.presence, "file", budget, client.handles);
    table.finish();
  }
}

}  // namespace tal::sim
