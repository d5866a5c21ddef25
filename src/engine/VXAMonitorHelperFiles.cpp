#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "engine/Snapshots.h"
#include "engine/VXAMonitorHelper.h"

// Holds the name of each client once. The names are sorted, because in this order no choice of
// names makes a look-up slow; handles of one client often follow each other.
class VXAMonitorHelper::ClientNames {
 public:
  const orv::Reference<ClientName>& of(std::string_view name) {
    if (last_ && last_->text.toBytes() == name) return last_;
    const auto found = names_.find(name);
    last_ = found != names_.end() ? found->second : add(name);
    return last_;
  }

 private:
  orv::Reference<ClientName> add(std::string_view name) {
    auto added = orv::makeReference<ClientName>(orv::String(name));
    names_.emplace(added->text.toBytes(), added);
    return added;
  }

  std::map<std::string_view, orv::Reference<ClientName>> names_;
  orv::Reference<ClientName> last_;
};

orv::Reference<VXAMonitorHelper::Files> VXAMonitorHelper::getActiveFileInfoList(bool withHandles) {
  std::uint32_t count = 0;
  check(TalGetOpenFilesData(handle_, &count));
  const SnapshotRelease release(TalFreeOpenFilesData, handle_);
  auto files = orv::makeReference<Files>();
  ClientNames names;
  for (std::uint32_t index = 0; index < count; ++index) {
    std::uint32_t size = TAL_NAME_SIZE;
    // One byte more than the library knows of, so that a name that fills its buffer still ends with
    // a NUL.
    char name[TAL_NAME_SIZE + 1] = {};
    const std::int16_t status = TalGetOpenFileName(handle_, index, &size, name);
    if (status == TAL_STATUS_NO_ENTRY) break;
    check(status);
    name[TAL_NAME_SIZE] = '\0';
    if (auto file = readFile(name, withHandles, names)) files->append(std::move(file));
  }
  return files;
}

orv::Reference<FileInfo> VXAMonitorHelper::readFile(const char* name, bool withHandles,
                                                    ClientNames& names) {
  TalFileInfo info{};
  const std::int16_t status = TalGetFileInfo2(handle_, name, &info);
  if (status == TAL_STATUS_FILE_CLOSED) return {};
  check(status);
  const orv::String fileName(name);
  auto handles =
      withHandles ? readHandles(fileName, names) : orv::makeReference<FileInfo::Handles>();
  if (withHandles && handles->isEmpty()) return {};
  return orv::makeReference<FileInfo>(fileName, info.pageSize, info.readOnly, info.recordLocks,
                                      info.transactionLock, info.sizeKb, handles);
}

orv::Reference<FileInfo::Handles> VXAMonitorHelper::getFileHandleInfoList(
    const orv::String& fileName) {
  ClientNames names;
  return readHandles(fileName, names);
}

orv::Reference<FileInfo::Handles> VXAMonitorHelper::readHandles(const orv::String& fileName,
                                                                ClientNames& names) {
  const std::string& name = fileName.toBytes();
  auto handles = orv::makeReference<FileInfo::Handles>();
  std::uint32_t count = 0;
  const std::int16_t counted = TalGetFileHandlesData(handle_, name.c_str(), &count);
  if (counted == TAL_STATUS_FILE_CLOSED) return handles;
  check(counted);
  for (std::uint32_t index = 0; index < count; ++index) {
    TalFileHandleInfo info{};
    const std::int16_t status = TalGetFileHandleInfo(handle_, name.c_str(), index, &info);
    if (status == TAL_STATUS_NO_ENTRY) break;
    if (status == TAL_STATUS_FILE_CLOSED) {
      handles->clear();  // the file closed during the walk: no partial list
      break;
    }
    check(status);
    handles->append(orv::makeReference<FileHandleInfo>(
        info.clientIndex, info.recordLockType, info.openMode, info.waitState, info.transactionState,
        names.of(fieldBytes(info.clientName))));
  }
  handles->shrinkToSize();
  return handles;
}
