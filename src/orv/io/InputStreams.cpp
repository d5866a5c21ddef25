#include "orv/io/InputStreams.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <iterator>
#include <string>

#include "orv/Exception.h"
#include "orv/Process.h"
#include "orv/io/FileDescriptor.h"

namespace orv::io {

namespace {

int openForReading(const String& path) {
  const int descriptor = ::open(path.toBytes().c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) throw ResultException(resultOfErrno(errno));
  return descriptor;
}

constexpr int kNoTimeLimit = -1;

// False if a stop signal ends the wait. The system skips a descriptor of -1.
bool waitForInput() noexcept {
  pollfd waits[] = {
      {STDIN_FILENO,           POLLIN, 0},
      {stopSignalDescriptor(), POLLIN, 0}
  };
  while (poll(waits, std::size(waits), kNoTimeLimit) < 0 && errno == EINTR) {
  }
  return waits[1].revents == 0;
}

}  // namespace

int InputStream::read() {
  char byte = 0;
  return read(&byte, 1) == 1 ? static_cast<unsigned char>(byte) : -1;
}

FileInputStream::FileInputStream(const String& path) : file_(openForReading(path)) {
  struct stat status {};
  if (fstat(file_.get(), &status) == 0 && S_ISDIR(status.st_mode)) {
    throw ResultException(resultOfErrno(EISDIR));
  }
}

std::size_t FileInputStream::read(char* buffer, std::size_t size) {
  return readSome(file_.get(), buffer, size);
}

std::size_t StdioInputStream::read(char* buffer, std::size_t size) {
  if (!waitForInput()) return 0;
  try {
    return readSome(STDIN_FILENO, buffer, size);
  } catch (const ResultException&) {
    return 0;
  }
}

}  // namespace orv::io
