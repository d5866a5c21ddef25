#include "tal/postgresql/open_files.h"

#include <string>
#include <unordered_map>
#include <unordered_set>

#include "tal/sql/numbers.h"

namespace tal::postgresql {
namespace {

enum Column : std::size_t {
  kDatabase,
  kRelation,
  kName,
  kPageSize,
  kReadOnly,
  kRecordLocks,
  kTransactionLock,
  kSizeKb,
  kClientIndex,
  kOpenMode,
  kLockType,
  kWaitState,
  kTransactionState,
  kClientName,
};

OpenFile fileIn(const sql::RowSource& row) {
  return {.name = sql::text(row, kName),
          .pageSize = sql::count(row, kPageSize),
          .readOnly = sql::code(row, kReadOnly, flag::kUnknown),
          .recordLocks = sql::code(row, kRecordLocks, flag::kUnknown),
          .transactionLock = sql::code(row, kTransactionLock, flag::kUnknown),
          .sizeKb = sql::count(row, kSizeKb),
          .handles = {}};
}

FileHandle handleIn(const sql::RowSource& row) {
  return {.clientIndex = sql::count(row, kClientIndex),
          .openMode = sql::code(row, kOpenMode, open_mode::kUnknown),
          .recordLockType = sql::code(row, kLockType, record_lock::kUnknown),
          .waitState = sql::code(row, kWaitState, wait_state::kUnknown),
          .transactionState = sql::code(row, kTransactionState, transaction_state::kUnknown),
          .clientName = sql::text(row, kClientName)};
}

// Dots are legal in the parts of a name, so two relations can have the same. Relations of several
// databases can even have the same number: the layer above tells those apart.
void distinguish(std::string& name, const std::string& relation,
                 std::unordered_set<std::string>& names) {
  if (!names.insert(name).second) name += '#' + relation;
}

}  // namespace

std::vector<OpenFile> readOpenFiles(sql::RowSource& rows) {
  std::vector<OpenFile> files;
  std::unordered_map<std::string, std::size_t> indexes;
  std::unordered_set<std::string> names;
  while (rows.next()) {
    const std::string relation = sql::text(rows, kRelation);
    const std::string key = sql::text(rows, kDatabase) + '/' + relation;
    const auto [found, isNew] = indexes.try_emplace(key, files.size());
    if (isNew) distinguish(files.emplace_back(fileIn(rows)).name, relation, names);
    files[found->second].handles.push_back(handleIn(rows));
  }
  return files;
}

}  // namespace tal::postgresql
