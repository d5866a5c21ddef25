#include "tal/mariadb/handles.h"

#include <algorithm>
#include <map>
#include <string>

#include "tal/sql/figures.h"

namespace tal::mariadb {
namespace {

// Which storage engine keeps a table, as its files and locks show. A thing without files may be a
// table in memory, a view, or not a table.
enum class Storage : std::uint8_t { kInnodb, kOther, kUnknown };

Storage storageOf(const Use& use, const TableFiles& files) {
  if (use.isInnodb) return Storage::kInnodb;
  const auto& indexes = files.of(use.target.table);
  if (indexes.empty()) return Storage::kUnknown;
  return files.file(indexes.front()).isInnodb ? Storage::kInnodb : Storage::kOther;
}

// Only tables that certainly belong to another engine have the modes of non-transactional ones.
std::uint8_t openModeOf(const Use& use, Storage storage) {
  const bool transactional = storage != Storage::kOther;
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

// Row locks are counted per transaction. If all of its tables are locked, each gets the type;
// otherwise tables that were only read count as unlocked, unless a row of them is at issue.
std::uint8_t recordLockTypeOf(const Use& use, Storage storage, bool locksAllItsTables) {
  if (!use.owner->transaction || !use.granted) return record_lock::kNone;
  const std::uint8_t type = rowLocksOf(*use.owner->transaction);
  if (use.target.kind == LockTarget::Kind::kTransaction) return type;
  if (storage != Storage::kInnodb) return record_lock::kNone;
  if (!use.rowSpaces.empty()) return type == record_lock::kNone ? record_lock::kSingle : type;
  return locksAllItsTables || *use.granted != Strength::kRead ? type : record_lock::kNone;
}

std::uint8_t waitStateOf(const Use& use, Storage storage) {
  const bool awaitsTable =
      storage == Storage::kOther && use.owner->state == "Waiting for table level lock";
  return use.pending || awaitsTable ? wait_state::kFile : wait_state::kNone;
}

std::uint16_t transactionStateOf(const Use& use, Storage storage) {
  if (use.granted == Strength::kExclusive) return transaction_state::kExclusive;
  const bool isIn = use.owner->transaction && storage != Storage::kOther;
  return isIn ? transaction_state::kConcurrent : transaction_state::kNone;
}

using Uses = std::vector<Use>::const_iterator;

Uses endOfConnection(Uses first, Uses last) {
  return std::find_if(first, last, [&](const Use& use) { return use.owner != first->owner; });
}

bool locksAllTables(Uses first, Uses last, const TableFiles& files) {
  if (!first->owner->transaction) return false;
  const auto tables = std::count_if(first, last, [&](const Use& use) {
    return use.granted && storageOf(use, files) == Storage::kInnodb;
  });
  const bool hasOthers = std::any_of(first, last, [&](const Use& use) {
    return use.target.kind == LockTarget::Kind::kTable &&
           storageOf(use, files) == Storage::kUnknown;
  });
  return !hasOthers && (tables == 1 || first->owner->transaction->tablesLocked == tables);
}

Handle handleOf(const Use& use, bool locksAllItsTables, const TableFiles& files) {
  const Storage storage = storageOf(use, files);
  return {.use = &use,
          .file = {},
          .openMode = openModeOf(use, storage),
          .recordLockType = recordLockTypeOf(use, storage, locksAllItsTables),
          .waitState = waitStateOf(use, storage),
          .transactionState = transactionStateOf(use, storage)};
}

// The files in which rows are locked or awaited. If the files of a tablespace are not known, the
// files of the table are taken.
std::vector<Handle> handlesOnRows(const Use& use, const Handle& handle, const TableFiles& files) {
  std::vector<Handle> handles;
  for (const auto& [space, waits] : use.rowSpaces) {
    Handle& onRow = handles.emplace_back(handle);
    onRow.file = files.ofSpace(space);
    if (waits) onRow.waitState = wait_state::kRecord;
  }
  std::erase_if(handles, [](const Handle& onRow) { return !onRow.file; });
  return handles;
}

std::vector<Handle> handlesOfUse(const Use& use, bool locksAllItsTables, const TableFiles& files) {
  Handle handle = handleOf(use, locksAllItsTables, files);
  std::vector<Handle> handles = handlesOnRows(use, handle, files);
  if (!handles.empty()) return handles;
  for (const std::size_t index : files.of(use.target.table)) {
    handle.file = index;
    handles.push_back(handle);
  }
  if (handles.empty()) handles.push_back(handle);
  return handles;
}

constexpr std::uint8_t flagOf(bool value) { return value ? flag::kYes : flag::kNo; }

// Only InnoDB has data that the server itself may not write. Other files can always be written.
OpenFile reportedFile(const DataFile& file, const ServerFacts& facts) {
  OpenFile result;
  result.name = file.path;
  result.pageSize = sql::clampUnsigned(file.pageSize);
  result.sizeKb = sql::kilobytes(file.bytes);
  result.readOnly = flagOf(file.isInnodb && facts.innodbReadOnly);
  return result;
}

OpenFile withoutFile(std::string name) {
  OpenFile result;
  result.name = std::move(name);
  result.readOnly = flag::kNo;
  return result;
}

FileHandle reportedHandle(const Handle& handle) {
  return {.clientIndex = sql::clampUnsigned(handle.use->owner->connection),
          .openMode = handle.openMode,
          .recordLockType = handle.recordLockType,
          .waitState = handle.waitState,
          .transactionState = handle.transactionState,
          .clientName = handle.use->owner->name};
}

void setFlags(OpenFile& file) {
  const auto hasRecordLock = [](const FileHandle& handle) {
    return handle.recordLockType != record_lock::kNone;
  };
  const auto isInTransaction = [](const FileHandle& handle) {
    return handle.transactionState != transaction_state::kNone;
  };
  file.recordLocks = flagOf(std::ranges::any_of(file.handles, hasRecordLock));
  file.transactionLock = flagOf(std::ranges::any_of(file.handles, isInTransaction));
}

void addHandle(Client& client, const Handle& handle, const TableFiles& files) {
  if (handle.use->granted == Strength::kExclusive) {
    client.transactionState = transaction_state::kExclusive;
  }
  client.handles.push_back(
      {.openMode = handle.openMode,
       .recordLockType = handle.recordLockType,
       .waitState = handle.waitState,
       .transactionState = handle.transactionState,
       .fileName = handle.file ? files.file(*handle.file).path : handle.use->target.name()});
}

}  // namespace

std::vector<Handle> handlesOf(const LockPicture& picture, const TableFiles& files) {
  std::vector<Handle> handles;
  for (auto first = picture.uses.begin(); first != picture.uses.end();) {
    const auto last = endOfConnection(first, picture.uses.end());
    const bool locksAll = locksAllTables(first, last, files);
    for (; first != last; ++first) {
      const std::vector<Handle> added = handlesOfUse(*first, locksAll, files);
      handles.insert(handles.end(), added.begin(), added.end());
    }
  }
  return handles;
}

std::vector<OpenFile> openFilesOf(const std::vector<DataFile>& files,
                                  const std::vector<Handle>& handles, const ServerFacts& facts) {
  std::vector<OpenFile> result;
  result.reserve(files.size());
  for (const DataFile& file : files) result.push_back(reportedFile(file, facts));
  std::map<std::string, std::size_t> others;
  for (const Handle& handle : handles) {
    std::size_t index = handle.file.value_or(0);
    if (!handle.file) {
      const std::string name = handle.use->target.name();
      index = others.try_emplace(name, result.size()).first->second;
      if (index == result.size()) result.push_back(withoutFile(name));
    }
    result[index].handles.push_back(reportedHandle(handle));
  }
  std::ranges::for_each(result, setFlags);
  return result;
}

void addHandles(std::vector<Client>& clients, const std::vector<Handle>& handles,
                const TableFiles& files) {
  std::map<std::uint32_t, Client*> byNumber;
  for (Client& client : clients) byNumber[client.connectionNumber] = &client;
  for (const Handle& handle : handles) {
    const auto client = byNumber.find(sql::clampUnsigned(handle.use->owner->connection));
    if (client != byNumber.end()) addHandle(*client->second, handle, files);
  }
}

}  // namespace tal::mariadb
