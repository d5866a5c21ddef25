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

int openForReading(const String& path, FileInputStream::Kind kind) {
  const int flags = O_RDONLY | O_CLOEXEC | (kind == FileInputStream::kRegularFile ? O_NONBLOCK : 0);
  const int descriptor = ::open(path.toBytes().c_str(), flags);
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

FileInputStream::FileInputStream(const String& path, std::size_t largest, Kind kind)
    : file_(openForReading(path, kind)), bytesLeft_(largest) {
  struct stat status {};
  if (fstat(file_.get(), &status) != 0) throw ResultException(resultOfErrno(errno));
  if (S_ISDIR(status.st_mode)) throw ResultException(resultOfErrno(EISDIR));
  if (kind == kRegularFile && !S_ISREG(status.st_mode)) throw ResultException(kAccessDenied);
  const mode_t others = status.st_uid == 0 ? S_IROTH : S_IRGRP | S_IROTH;
  isReadableByOthers_ = S_ISREG(status.st_mode) && (status.st_mode & others) != 0;
}

std::size_t FileInputStream::read(char* buffer, std::size_t size) {
  const std::size_t count = readSome(file_.get(), buffer, size);
  if (count > bytesLeft_) throw ResultException(kFileTooLarge);
  bytesLeft_ -= count;
  return count;
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
