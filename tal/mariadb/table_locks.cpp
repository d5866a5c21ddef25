#include "tal/mariadb/table_locks.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <tuple>
#include <utility>

namespace tal::mariadb {
namespace {

enum Column : std::size_t {
  kPart,
  kConnection,
  kUser,
  kHost,
  kState,
  kSchema,
  kTable,
  kLockType,
  kGranted,
  kTablesLocked,
  kRowsLocked,
  kRowsModified,
  kWaitType,
  kWaitSpace
};

constexpr auto kStrengths = std::to_array<std::pair<std::string_view, Strength>>({
    {"SHARED",               Strength::kRead     },
    {"SHARED_HIGH_PRIO",     Strength::kRead     },
    {"SHARED_READ",          Strength::kRead     },
    {"SHARED_READ_ONLY",     Strength::kRead     },
    {"SHARED_NO_READ_WRITE", Strength::kExclusive},
    {"EXCLUSIVE",            Strength::kExclusive},
});

InnodbWait waitOf(const std::string& lockType) {
  if (lockType == "RECORD") return InnodbWait::kRow;
  return lockType == "TABLE" ? InnodbWait::kTable : InnodbWait::kNone;
}

std::optional<Transaction> transactionOf(const sql::RowSource& row) {
  if (!row.cell(kTablesLocked)) return std::nullopt;
  return Transaction{.tablesLocked = sql::integer(row, kTablesLocked),
                     .rowsLocked = sql::integer(row, kRowsLocked),
                     .rowsModified = sql::integer(row, kRowsModified)};
}

LockOwner ownerOf(const sql::RowSource& row) {
  LockOwner owner;
  owner.connection = sql::integer(row, kConnection);
  owner.name = sql::text(row, kUser) + "@" + sql::text(row, kHost);
  owner.awaitsTableLevelLock = sql::text(row, kState) == "Waiting for table level lock";
  owner.transaction = transactionOf(row);
  owner.wait = waitOf(sql::text(row, kWaitType));
  if (row.cell(kWaitSpace)) owner.waitSpace = sql::integer(row, kWaitSpace);
  return owner;
}

TableLock lockOf(const sql::RowSource& row) {
  return {
      .owner = ownerOf(row),
      .table = {sql::text(row, kSchema), sql::text(row, kTable)},
      .strength = strengthOf(sql::text(row, kLockType)),
      .granted = sql::integer(row, kGranted) != 0
  };
}

void raise(std::optional<Strength>& strongest, Strength strength) {
  strongest = std::max(strongest.value_or(strength), strength);
}

}  // namespace

Strength strengthOf(std::string_view lockType) {
  const auto* const found = std::find_if(kStrengths.begin(), kStrengths.end(),
                                         [&](const auto& row) { return row.first == lockType; });
  return found == kStrengths.end() ? Strength::kWrite : found->second;
}

LockPicture decodeLocks(sql::RowSource& rows, std::int64_t ownConnection) {
  LockPicture picture;
  while (rows.next()) {
    if (sql::text(rows, kPart) == "C") {
      picture.contendedSpaces.insert(sql::integer(rows, kWaitSpace));
    } else if (sql::integer(rows, kConnection) == ownConnection) {
      picture.isComplete = true;
    } else {
      picture.locks.push_back(lockOf(rows));
    }
  }
  return picture;
}

std::vector<TableUse> mergeLocks(std::vector<TableLock> locks) {
  const auto key = [](const auto& lock) { return std::tie(lock.owner.connection, lock.table); };
  std::sort(locks.begin(), locks.end(),
            [&](const TableLock& a, const TableLock& b) { return key(a) < key(b); });

  std::vector<TableUse> uses;
  for (TableLock& lock : locks) {
    if (uses.empty() || key(uses.back()) != key(lock)) {
      uses.push_back({std::move(lock.owner), std::move(lock.table), {}, {}});
    }
    raise(lock.granted ? uses.back().granted : uses.back().pending, lock.strength);
  }
  return uses;
}

}  // namespace tal::mariadb
