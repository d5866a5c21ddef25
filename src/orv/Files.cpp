#include "orv/Files.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

#include "orv/Exception.h"

namespace orv {
namespace {

bool isForeignIn(const std::filesystem::path& folder, const struct stat& entry) {
  struct stat status {};
  if (stat(folder.empty() ? "." : folder.c_str(), &status) != 0) return false;
  const bool everybodyWrites = (status.st_mode & S_IWOTH) != 0;
  return everybodyWrites && entry.st_uid != geteuid() && entry.st_uid != status.st_uid;
}

}  // namespace

DirHandle* ORVDirOpen(const String& path) {
  return reinterpret_cast<DirHandle*>(opendir(path.toBytes().c_str()));
}

void ORVDirClose(DirHandle* handle) noexcept {
  if (handle != nullptr) closedir(reinterpret_cast<DIR*>(handle));
}

Result ORVDirCreate(const String& path, unsigned permissions) {
  const std::string name = path.toBytes();
  if (mkdir(name.c_str(), permissions) == 0) return 0;
  const int error = errno;
  struct stat status {};
  const bool isThere =
      error == EEXIST && stat(name.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
  return isThere ? 0 : resultOfErrno(error);
}

bool ORVPathExists(const String& path) {
  struct stat status {};
  return stat(path.toBytes().c_str(), &status) == 0;
}

bool isPlanted(const String& path) {
  std::filesystem::path at;
  for (const auto& name : std::filesystem::path(path.toBytes())) {
    const std::filesystem::path folder = at;
    at /= name;
    struct stat entry {};
    if (lstat(at.c_str(), &entry) != 0) return false;  // nothing is there yet
    if (!S_ISDIR(entry.st_mode) && isForeignIn(folder, entry)) return true;
  }
  return false;
}

}  // namespace orv

namespace orv::util {
namespace {

String checked(const std::filesystem::path& path, const std::error_code& error) {
  if (error) throw ResultException(resultOfErrno(error.value()));
  return String(std::string_view(path.native()));
}

}  // namespace

String FilePath::getCurrentDir() {
  std::error_code error;
  const auto path = std::filesystem::current_path(error);
  String folder = checked(path, error);
  if (!folder.wide().ends_with(dirDelim)) folder.append(1, dirDelim);
  return folder;
}

String FilePath::getProgramDir() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  return checked(program.parent_path(), error);
}

}  // namespace orv::util
