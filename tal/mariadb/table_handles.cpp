#include "tal/mariadb/table_handles.h"

#include <algorithm>
#include <iterator>

#include "tal/failure.h"

namespace tal::mariadb {
namespace {

// Which engine keeps a table. It is told by the table's files; a table without any may be in
// memory, a view, or inside InnoDB's system tablespace.
enum class Storage : std::uint8_t { kInnodb, kOther, kUnknown };

Storage storageOf(const TableUse& use, const TableFiles& files) {
  const auto& indexes = files.of(use.table);
  if (indexes.empty()) return Storage::kUnknown;
  return files.file(indexes.front()).isInnodb ? Storage::kInnodb : Storage::kOther;
}

// The modes tell transactional tables from others, which a table without files keeps to itself.
std::uint8_t openModeOf(const TableUse& use, Storage storage) {
  if (storage == Storage::kUnknown) return open_mode::kUnknown;
  const bool transactional = storage == Storage::kInnodb;
  switch (use.granted ? *use.granted : use.pending.value_or(Strength::kRead)) {
    case Strength::kExclusive:
      return transactional ? open_mode::kExclusive : open_mode::kExclusiveNonTransactional;
    case Strength::kRead:
      return transactional ? open_mode::kReadOnly : open_mode::kReadOnlyNonTransactional;
    case Strength::kWrite:
      break;
  }
  return transactional ? open_mode::kNormal : open_mode::kNormalNonTransactional;
}

// The type of all row locks of a transaction. Rows that it inserted are locked without being
// counted as locked.
std::uint8_t rowLocksOf(const Transaction& transaction) {
  const std::int64_t rows =
      transaction.rowsLocked > 0 ? transaction.rowsLocked : transaction.rowsModified;
  if (rows <= 0) return record_lock::kNone;
  return rows == 1 ? record_lock::kSingle : record_lock::kMultiple;
}

// The server tells how many rows a transaction has locked, not in which tables. When it has locked
// all tables that it uses, they share the answer; otherwise, and beside a table that may or may not
// be InnoDB's, the tables that it only reads are taken to have no locked rows.
std::uint8_t recordLockTypeOf(const TableUse& use, Storage storage, bool locksAllItsTables) {
  if (storage == Storage::kOther || !use.owner.transaction || !use.granted) {
    return record_lock::kNone;
  }
  const std::uint8_t type = rowLocksOf(*use.owner.transaction);
  if (type == record_lock::kNone) return type;
  if (storage == Storage::kUnknown) return record_lock::kUnknown;
  return locksAllItsTables || *use.granted != Strength::kRead ? type : record_lock::kNone;
}

std::uint8_t waitStateOf(const TableUse& use, Storage storage, const DataFile* file) {
  const LockOwner& owner = use.owner;
  if (owner.wait == InnodbWait::kRow && file != nullptr && file->space &&
      file->space == owner.waitSpace) {
    return wait_state::kRecord;
  }
  const bool awaitsTable =
      storage == Storage::kInnodb ? owner.wait == InnodbWait::kTable : owner.awaitsTableLevelLock;
  return use.pending || awaitsTable ? wait_state::kFile : wait_state::kNone;
}

std::uint16_t transactionStateOf(const TableUse& use, Storage storage) {
  if (use.granted == Strength::kExclusive) return transaction_state::kExclusive;
  if (storage == Storage::kOther || !use.owner.transaction) return transaction_state::kNone;
  return storage == Storage::kInnodb ? transaction_state::kConcurrent : transaction_state::kUnknown;
}

using Uses = std::vector<TableUse>::const_iterator;

Uses endOfConnection(Uses first, Uses last) {
  return std::find_if(first, last, [&](const TableUse& use) {
    return use.owner.connection != first->owner.connection;
  });
}

bool locksAllTables(Uses first, Uses last, const TableFiles& files) {
  const bool allAreKnown = std::all_of(
      first, last, [&](const TableUse& use) { return storageOf(use, files) != Storage::kUnknown; });
  if (!first->owner.transaction || !allAreKnown) return false;
  const auto tables = std::count_if(first, last, [&](const TableUse& use) {
    return use.granted && storageOf(use, files) == Storage::kInnodb;
  });
  return tables == 1 || first->owner.transaction->tablesLocked == tables;
}

void addHandles(const TableUse& use, bool locksAllItsTables, const TableFiles& files,
                std::vector<TableHandle>& handles) {
  const Storage storage = storageOf(use, files);
  TableHandle handle{.use = &use, .file = {}};
  handle.openMode = openModeOf(use, storage);
  handle.recordLockType = recordLockTypeOf(use, storage, locksAllItsTables);
  handle.waitState = waitStateOf(use, storage, nullptr);
  handle.transactionState = transactionStateOf(use, storage);
  if (storage == Storage::kUnknown) handles.push_back(handle);
  const std::vector<std::size_t>& indexes = files.of(use.table);
  if (handles.size() + indexes.size() > kMostHandles) throw Failure(Status::kServerError);
  for (const std::size_t index : indexes) {
    handle.file = index;
    handle.waitState = waitStateOf(use, storage, &files.file(index));
    handles.push_back(handle);
  }
}

}  // namespace

std::vector<TableHandle> handlesOf(const std::vector<TableUse>& uses, const TableFiles& files) {
  std::vector<TableHandle> handles;
  for (auto first = uses.begin(); first != uses.end();) {
    const auto last = endOfConnection(first, uses.end());
    const bool locksAll = locksAllTables(first, last, files);
    for (; first != last; ++first) addHandles(*first, locksAll, files, handles);
  }
  return handles;
}

}  // namespace tal::mariadb
