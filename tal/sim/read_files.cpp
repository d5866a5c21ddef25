#include "tal/sim/read_sections.h"

namespace tal::sim {

void readFiles(TableReader& root, std::vector<FileEntry>& files, ItemBudget& budget) {
  for (const Node* const node : root.tables("file")) {
    TableReader table(*node, "[[file]]");
    FileEntry& file = files.emplace_back();
    table.require("name");
    table.read("name", file.name);
    table.read("page_size", file.pageSize);
    table.read("read_only", file.readOnly, kFlagWords);
    table.read("record_locks", file.recordLocks, kFlagWords);
    table.read("transaction_lock", file.transactionLock, kFlagWords);
    table.read("size_kb", file.sizeKb);
    readPresence(table, file.presence, budget);
    readHandles(table, file.presence, "client", budget, file.handles);
    table.finish();
  }
}

}  // namespace tal::sim
