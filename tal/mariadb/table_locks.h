// Who holds or awaits which table: the server's metadata locks, merged to one handle for each
// connection and table.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "tal/mariadb/table_name.h"
#include "tal/sql/row.h"

namespace tal::mariadb {

// What a metadata lock allows its owner, weakest first.
enum class Strength : std::uint8_t { kRead, kWrite, kExclusive };

// The strength of a lock type, as metadata_locks names it; one that it does not know allows
// writing.
Strength strengthOf(std::string_view lockType);

// An InnoDB transaction.
struct Transaction {
  std::int64_t tablesLocked = 0;
  std::int64_t rowsLocked = 0;  // the server's estimate; fresh rows are not counted
  std::int64_t rowsModified = 0;
};

// What a connection waits for inside InnoDB.
enum class InnodbWait : std::uint8_t { kNone, kRow, kTable };

// A connection that owns locks.
struct LockOwner {
  std::int64_t connection = 0;
  std::string name;                   // "user@host"
  bool awaitsTableLevelLock = false;  // of an engine that locks whole tables
  std::optional<Transaction> transaction;
  InnodbWait wait = InnodbWait::kNone;
  std::optional<std::int64_t> waitSpace;  // where the row is that it waits for
};

// One metadata lock.
struct TableLock {
  LockOwner owner;
  TableName table;
  Strength strength = Strength::kRead;
  bool granted = false;
};

struct LockPicture {
  // Whether the server tells of metadata locks at all; when it does, the monitor's own are there.
  bool isComplete = false;
  std::vector<TableLock> locks;                      // of everybody but the monitor
  std::unordered_set<std::int64_t> contendedSpaces;  // where somebody waits for a row
};

// Reads handles.sql; `ownConnection` is the monitor's.
LockPicture decodeLocks(sql::RowSource& rows, std::int64_t ownConnection);

// All locks of one connection on one table.
struct TableUse {
  LockOwner owner;
  TableName table;
  std::optional<Strength> granted;  // the strongest
  std::optional<Strength> pending;
};

// The locks merged, by connection and table.
std::vector<TableUse> mergeLocks(std::vector<TableLock> locks);

}  // namespace tal::mariadb
