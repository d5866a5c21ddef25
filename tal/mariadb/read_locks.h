// Who holds or awaits what: the server's locks, merged to one use for each connection and thing.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tal/mariadb/read_files.h"
#include "tal/sql/row.h"

namespace tal::mariadb {

// What a lock allows its owner, weakest first.
enum class Strength : std::uint8_t { kRead, kWrite, kExclusive };

// The strength of a metadata lock's type; one that the table does not know allows writing.
Strength strengthOf(std::string_view lockType);

// An InnoDB transaction.
struct Transaction {
  std::int64_t tablesLocked = 0;
  std::int64_t rowsLocked = 0;  // the server's estimate; fresh rows are not counted
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
  TableName table;  // of what is no table, the second part alone, in the words of the reports

  // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the 0 that is compared with for a null.
  auto operator<=>(const LockTarget&) const = default;

  // "schema.table", or what else it is.
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
  bool isInnodb = false;  // known without looking at files
};

struct LockPicture {
  // Whether the server lists metadata locks at all; when it does, the monitor's own are there.
  bool isComplete = false;
  std::map<std::int64_t, LockOwner> owners;  // by connection
  std::vector<Use> uses;                     // by connection and target; they point into the owners
};

// Reads locks.sql; `ownConnection` is the monitor's, which is left out. The picture has
//
// - all tables that metadata locks are on, and all that InnoDB locks at issue are on,
// - locks that users named ("user lock NAME"),
// - other things than tables while somebody waits for them ("backup lock", "schema app"),
// - what the process list alone says that somebody waits for ("metadata lock", "table flush"),
// - where the server lists no metadata locks, "transaction N" for a transaction whose tables are
//   not known.
LockPicture readLocks(sql::RowSource& rows, std::int64_t ownConnection);

}  // namespace tal::mariadb
