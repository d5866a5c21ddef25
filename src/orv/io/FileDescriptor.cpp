#include "orv/io/FileDescriptor.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "orv/Exception.h"
#include "orv/io/OutputStreams.h"

namespace orv::io {
namespace {

String plainWriteErrorText(const String& target, const String& reason) {
  return "Cannot write to " + target + ": " + reason;
}

WriteErrorText s_writeErrorText = plainWriteErrorText;

constexpr int kNoTimeLimit = -1;

// Returns if another attempt makes sense. Another program that shares the terminal or pipe may have
// made it non-blocking.
[[gnu::noinline]] void waitOrThrow(int descriptor, int error, const String& target) {
  if (error == EINTR) return;
  if (error != EAGAIN) throwWriteError(target, error);
  pollfd wait{descriptor, POLLOUT, 0};
  poll(&wait, 1, kNoTimeLimit);
}

}  // namespace

void setWriteErrorText(WriteErrorText text) noexcept { s_writeErrorText = text; }

void throwWriteError(const String& target, int error) {
  throw IoException(s_writeErrorText(target, std::strerror(error)), resultOfErrno(error));
}

void writeFully(int descriptor, std::string_view bytes, const String& target) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0) {
      waitOrThrow(descriptor, errno, target);
    } else {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    }
  }
}

std::size_t readSome(int descriptor, char* buffer, std::size_t size) {
  while (true) {
    const ssize_t count = ::read(descriptor, buffer, size);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EINTR) throw ResultException(resultOfErrno(errno));
  }
}

int FileDescriptor::close() noexcept {
  const int descriptor = std::exchange(descriptor_, -1);
  return descriptor < 0 || ::close(descriptor) == 0 ? 0 : errno;
}

}  // namespace orv::io
