#include "tal/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tal {
namespace {

[[noreturn]] void failUnreadable(int error) {
  throw FileError("cannot be read: " + std::generic_category().message(error));
}

// Without O_NONBLOCK, opening a pipe would wait for a writer.
int opened(const std::string& path) {
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) failUnreadable(errno);
  struct stat status {};
  const bool isKnown = ::fstat(descriptor, &status) == 0;
  if (isKnown && S_ISREG(status.st_mode)) return descriptor;
  const int error = errno;
  ::close(descriptor);
  if (!isKnown) failUnreadable(error);
  throw FileError("is not a regular file");
}

}  // namespace

RegularFile::RegularFile(const std::string& path) : descriptor_(opened(path)) {}

RegularFile::~RegularFile() { ::close(descriptor_); }

std::size_t RegularFile::readAt(std::uint64_t place, std::span<char> bytes) const {
  std::size_t length = 0;
  while (length < bytes.size()) {
    const ssize_t got = ::pread(descriptor_, bytes.data() + length, bytes.size() - length,
                                static_cast<off_t>(place + length));
    if (got < 0 && errno != EINTR) failUnreadable(errno);
    if (got == 0) break;
    if (got > 0) length += static_cast<std::size_t>(got);
  }
  return length;
}

}  // namespace tal
