#include "orv/Files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <string>
#include <system_error>

#include "orv/Exception.h"
#include "orv/io/FileDescriptor.h"

namespace orv {
namespace {

bool everybodyWrites(const struct stat& folder) { return (folder.st_mode & S_IWOTH) != 0; }

// For a folder that everybody can write.
bool isPlantedIn(const struct stat& folder, const struct stat& entry) {
  const bool isForeign = entry.st_uid != geteuid() && entry.st_uid != folder.st_uid;
  const bool hasSecondName = S_ISREG(entry.st_mode) && entry.st_nlink > 1;
  return isForeign || hasSecondName;
}

// The descriptor if it is open, and what it stands for was not planted. Otherwise -1, and errno
// says why.
int unlessPlanted(int descriptor, const struct stat& folder) {
  struct stat entry {};
  if (descriptor < 0) return -1;
  if (fstat(descriptor, &entry) == 0 && !isPlantedIn(folder, entry)) return descriptor;
  close(descriptor);
  errno = EACCES;
  return -1;
}

// Another user can put a link there and take it away at any moment. So the link that is checked and
// the link that is followed are one and the same.
int openLinkAt(int at, const struct stat& folder, const char* name, int flags, unsigned mode) {
  const io::FileDescriptor link(
      unlessPlanted(openat(at, name, O_PATH | O_NOFOLLOW | O_CLOEXEC), folder));
  std::array<char, PATH_MAX> target{};
  if (link.get() < 0) return -1;
  if (readlinkat(link.get(), "", target.data(), target.size() - 1) <= 0) return -1;
  return openat(at, target.data(), flags, mode);
}

}  // namespace

DirHandle* ORVDirOpen(const String& path) {
  return reinterpret_cast<DirHandle*>(opendir(path.toBytes().c_str()));
}

void ORVDirClose(DirHandle* handle) noexcept {
  if (handle != nullptr) closedir(reinterpret_cast<DIR*>(handle));
}

Result ORVDirCreate(const String& path, unsigned permissions) {
  const std::string& name = path.toBytes();
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
    struct stat status {};
    if (S_ISDIR(entry.st_mode) || stat(folder.empty() ? "." : folder.c_str(), &status) != 0)
      continue;
    if (everybodyWrites(status) && isPlantedIn(status, entry)) return true;
  }
  return false;
}

int openToWrite(const String& path, int flags, unsigned permissions) {
  const std::filesystem::path whole(path.toBytes());
  const std::filesystem::path parent = whole.has_parent_path() ? whole.parent_path() : ".";
  const std::string name = whole.filename();
  struct stat folder {};
  if (name.empty() || stat(parent.c_str(), &folder) != 0 || !everybodyWrites(folder)) {
    return open(whole.c_str(), flags, permissions);
  }
  const io::FileDescriptor at(open(parent.c_str(), O_PATH | O_CLOEXEC));
  const int descriptor = openat(at.get(), name.c_str(), flags | O_NOFOLLOW, permissions);
  if (descriptor >= 0 || errno != ELOOP) return unlessPlanted(descriptor, folder);
  return openLinkAt(at.get(), folder, name.c_str(), flags, permissions);
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
  if (!folder.toBytes().ends_with(dirDelim)) folder.append(1, dirDelim);
  return folder;
}

String FilePath::getProgramDir() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  return checked(program.parent_path(), error);
}

}  // namespace orv::util
