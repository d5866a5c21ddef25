#include "tal/postgresql/read_files.h"

#include <map>
#include <set>
#include <string>
#include <tuple>

#include "tal/postgresql/lock_codes.h"
#include "tal/postgresql/result.h"
#include "tal/sql/numbers.h"

namespace tal::postgresql {
namespace {

enum Column : std::size_t {
  kDatabase,
  kRelation,
  kName,
  kPageSize,
  kBytes,
  kReadOnly,
  kLock,
  kProcess = kLock + kLockColumns,
  kClientName,
};
static_assert(kClientName + 1 == kFileColumns);

constexpr std::uint8_t flagOf(bool value) { return value ? flag::kYes : flag::kNo; }

OpenFile fileIn(const sql::RowSource& row) {
  return {.name = sql::text(row, kName),
          .pageSize = sql::count(row, kPageSize),
          .readOnly = flagOf(isTrue(row, kReadOnly)),
          .recordLocks = flag::kNo,
          .transactionLock = flag::kNo,
          .sizeKb = sql::kilobytes(sql::integer(row, kBytes)),
          .handles = {}};
}

void addHandle(OpenFile& file, const sql::RowSource& row) {
  const LockUse use = lockUseIn(row, kLock);
  if (recordLockTypeOf(use) != record_lock::kNone) file.recordLocks = flag::kYes;
  if (excludesWriters(use)) file.transactionLock = flag::kYes;
  file.handles.push_back({.clientIndex = sql::count(row, kProcess),
                          .openMode = openModeOf(use),
                          .recordLockType = recordLockTypeOf(use),
                          .waitState = waitStateOf(use),
                          .transactionState = transactionStateOf(use),
                          .clientName = sql::text(row, kClientName)});
}

// The parts of a name may have dots, so two relations can have the same name. Relations of
// different databases can even have the same number: the layer above makes their names different.
void distinguish(std::string& name, const std::string& relation, std::set<std::string>& names) {
  if (!names.insert(name).second) name += '#' + relation;
}

}  // namespace

std::vector<OpenFile> readFiles(sql::RowSource& rows) {
  using Key = std::tuple<std::string, std::string, std::string>;
  std::vector<OpenFile> files;
  std::map<Key, std::size_t> indexes;
  std::set<std::string> names;
  while (rows.next()) {
    const std::string relation = sql::text(rows, kRelation);
    const Key key{sql::text(rows, kDatabase), relation, sql::text(rows, kName)};
    const auto [found, isNew] = indexes.try_emplace(key, files.size());
    if (isNew) distinguish(files.emplace_back(fileIn(rows)).name, relation, names);
    addHandle(files[found->second], rows);
  }
  return files;
}

}  // namespace tal::postgresql
