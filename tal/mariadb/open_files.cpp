#include "tal/mariadb/open_files.h"

#include <algorithm>

#include "tal/sql/numbers.h"

namespace tal::mariadb {
namespace {

constexpr std::uint8_t flagOf(bool value) { return value ? flag::kYes : flag::kNo; }

OpenFile reportedFile(const DataFile& file, const ServerFacts& facts) {
  OpenFile result;
  result.name = file.path;
  result.pageSize = sql::clampUnsigned(file.pageSize);
  result.sizeKb = sql::kilobytes(file.bytes);
  if (file.isInnodb) result.readOnly = flagOf(facts.innodbReadOnly);
  return result;
}

FileHandle reportedHandle(const TableHandle& handle) {
  return {.clientIndex = sql::clampUnsigned(handle.use->owner.connection),
          .openMode = handle.openMode,
          .recordLockType = handle.recordLockType,
          .waitState = handle.waitState,
          .transactionState = handle.transactionState,
          .clientName = handle.use->owner.name};
}

bool hasRecordLock(const FileHandle& handle) {
  return handle.recordLockType == record_lock::kSingle ||
         handle.recordLockType == record_lock::kMultiple;
}

bool isInTransaction(const FileHandle& handle) {
  return handle.transactionState != transaction_state::kNone;
}

void setFlags(OpenFile& file, const DataFile& data, const LockPicture& picture) {
  if (picture.isComplete) {
    file.recordLocks = flagOf(std::ranges::any_of(file.handles, hasRecordLock));
    file.transactionLock = flagOf(std::ranges::any_of(file.handles, isInTransaction));
  } else if (data.space && picture.contendedSpaces.contains(*data.space)) {
    file.recordLocks = flag::kYes;
  }
}

}  // namespace

std::vector<OpenFile> openFilesOf(const std::vector<DataFile>& files,
                                  const std::vector<TableHandle>& handles,
                                  const LockPicture& picture, const ServerFacts& facts) {
  std::vector<OpenFile> result;
  result.reserve(files.size());
  for (const DataFile& file : files) result.push_back(reportedFile(file, facts));
  for (const TableHandle& handle : handles) {
    if (handle.file) result[*handle.file].handles.push_back(reportedHandle(handle));
  }
  for (std::size_t i = 0; i < files.size(); ++i) setFlags(result[i], files[i], picture);
  return result;
}

}  // namespace tal::mariadb
