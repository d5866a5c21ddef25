// The locks of the server, held and awaited, merged to one use for each connection and target.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tal/mariadb/data_files.h"
#include "tal/sql/row.h"

namespace tal::mariadb {

// What a lock allows its owner, weakest first.
enum class Strength : std::uint8_t { kRead, kWrite, kExclusive };

// The strength of a metadata lock's type; a type that the table does not know allows writing.
Strength strengthOf(std::string_view lockType);

// An InnoDB transaction.
struct Transaction {
  std::int64_t tablesLocked = 0;
  std::int64_t rowsLocked = 0;  // an estimate of the server, without rows that were just inserted
  std::int64_t rowsModified = 0;
};

// A connection that owns locks. 0 is the connection of prepared transactions whose session is gone.
struct LockOwner {
  std::int64_t connection = 0;
  std::string name;   // "user@host"
  std::string state;  // as the process list has it
  std::optional<Transaction> transaction;
};

// What a lock is on.
struct LockTarget {
  enum class Kind : std::uint8_t { kTable, kTransaction, kOther };

  Kind kind = Kind::kTable;
  TableName table;  // for other things only the second part, in the words of the reports

  // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the 0 that is compared with for a null.
  auto operator<=>(const LockTarget&) const = default;

  // "schema.table", or the words for another thing.
  [[nodiscard]] std::string name() const;
};

// All that one connection does with one target.
struct Use {
  const LockOwner* owner = nullptr;
  LockTarget target;
  std::optional<Strength> granted;  // the strongest
  std::optional<Strength> pending;
  // The tablespaces where it owns contended row locks, and whether it waits for one there.
  std::map<std::int64_t, bool> rowSpaces;
  bool isInnodb = false;  // known without reading the list of files
};

struct LockPicture {
  // Whether the server lists metadata locks. If it does, the monitor's own locks are in the list.
  bool isComplete = false;
  std::map<std::int64_t, LockOwner> owners;  // by connection
  std::vector<Use> uses;                     // by connection and target; they point into the owners
};

// Reads locks.sql; `ownConnection` is the monitor's, which is left out. The picture has
//
// - all tables with metadata locks, and all tables with InnoDB locks that somebody waits for,
// - locks that users named ("user lock NAME"),
// - things that are not tables, while somebody waits for them ("backup lock", "schema app"),
// - waits that only the process list shows ("metadata lock", "table flush"),
// - "transaction N" for a transaction whose tables are not known, if the server lists no metadata
//   locks.
LockPicture readLocks(sql::RowSource& rows, std::int64_t ownConnection);

}  // namespace tal::mariadb
