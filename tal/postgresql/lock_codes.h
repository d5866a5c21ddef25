// What a lock means in the interface's codes. Only codes that a JSON report can hold are used.
#pragma once

#include <cstddef>
#include <cstdint>

#include "tal/sql/row.h"

namespace tal::postgresql {

// The lock modes in the order of the rows of the server's table of conflicts.
enum LockMode : std::int64_t {
  kNoLock,
  kAccessShare,
  kRowShare,
  kRowExclusive,
  kShareUpdateExclusive,
  kShare,
  kShareRowExclusive,
  kExclusive,
  kAccessExclusive,
};

// The locks of one client on one object, as the lists of files and of clients show them.
struct LockUse {
  bool isRelation = false;    // otherwise an advisory lock, a transaction, ...
  bool hasRows = false;       // a table, or a relation whose kind is not known
  std::int64_t held = 0;      // strongest mode
  std::int64_t asked = 0;     // the same with what is awaited
  bool awaitsRecord = false;  // a row, a transaction that changed one, an advisory lock
  bool awaitsFile = false;    // anything else
  bool mayLockRows = false;   // the server does not say whether and how many
};

// How many columns of a row make one LockUse, and the function that reads them from column `first`
// on.
inline constexpr std::size_t kLockColumns = 7;
LockUse lockUseIn(const sql::RowSource& row, std::size_t first);

std::uint8_t openModeOf(const LockUse& use);
std::uint8_t recordLockTypeOf(const LockUse& use);
std::uint8_t waitStateOf(const LockUse& use);
std::uint16_t transactionStateOf(const LockUse& use);

// Whether it prevents everybody else from writing to a relation.
bool excludesWriters(const LockUse& use);

}  // namespace tal::postgresql
