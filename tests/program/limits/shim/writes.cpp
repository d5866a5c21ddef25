#include "tests/program/limits/shim/writes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace limits {
namespace {

constinit Target s_limited = Target::kNone;
constinit std::size_t s_room = 0;
constinit bool s_isDisturbed = false;
constinit std::uint64_t s_random = 0;
constinit std::uint64_t s_consoleWrites = 0;
constinit std::uint64_t s_failingConsoleWrite = 0;
constinit bool s_isLogLostAtClosing = false;

Target targetOf(int descriptor) {
  if (descriptor == STDERR_FILENO) return Target::kNone;
  if (descriptor == STDOUT_FILENO) return Target::kConsole;
  struct stat file {};
  const bool isFile = fstat(descriptor, &file) == 0 && S_ISREG(file.st_mode);
  const bool isWritten = isFile && (fcntl(descriptor, F_GETFL) & O_ACCMODE) == O_WRONLY;
  return isWritten ? Target::kLog : Target::kNone;
}

ssize_t writeNow(int descriptor, const void* bytes, std::size_t size) {
  return syscall(SYS_write, descriptor, bytes, size);
}

ssize_t fail(int error) {
  errno = error;
  return -1;
}

// Knuth's generator; its upper bits are the good ones.
unsigned next(unsigned below) {
  s_random = s_random * 6364136223846793005U + 1442695040888963407U;
  return static_cast<unsigned>(s_random >> 33U) % below;
}

ssize_t writeDisturbed(int descriptor, const void* bytes, std::size_t size) {
  switch (next(5)) {
    case 0:
      return fail(EINTR);
    case 1:
      return fail(EAGAIN);
    case 2:
      return writeNow(descriptor, bytes, std::min<std::size_t>(size, 1));
    case 3:
      return writeNow(descriptor, bytes, (size + 1) / 2);
    default:
      return writeNow(descriptor, bytes, size);
  }
}

ssize_t writeWhatFits(int descriptor, const void* bytes, std::size_t size) {
  if (s_room == 0 && size > 0) return fail(ENOSPC);
  const ssize_t written = writeNow(descriptor, bytes, std::min(size, s_room));
  if (written > 0) s_room -= static_cast<std::size_t>(written);
  return written;
}

}  // namespace

void disturbWrites(std::uint64_t seed) noexcept {
  s_isDisturbed = true;
  s_random = seed;
}

void limitRoom(Target target, std::size_t bytes) noexcept {
  s_limited = target;
  s_room = bytes;
}

void failConsoleWrite(std::uint64_t number) noexcept { s_failingConsoleWrite = number; }

void failClosingOfLog() noexcept { s_isLogLostAtClosing = true; }

}  // namespace limits

extern "C" ssize_t write(int descriptor, const void* bytes, std::size_t size) {
  using limits::s_limited;
  using limits::Target;
  const Target target = limits::targetOf(descriptor);
  if (target == Target::kNone) return limits::writeNow(descriptor, bytes, size);
  if (target == Target::kConsole && ++limits::s_consoleWrites == limits::s_failingConsoleWrite) {
    return limits::fail(ENOSPC);
  }
  if (limits::s_isDisturbed) return limits::writeDisturbed(descriptor, bytes, size);
  if (s_limited == target || s_limited == Target::kBoth) {
    return limits::writeWhatFits(descriptor, bytes, size);
  }
  return limits::writeNow(descriptor, bytes, size);
}

extern "C" int close(int descriptor) {
  const bool fails =
      limits::s_isLogLostAtClosing && limits::targetOf(descriptor) == limits::Target::kLog;
  const auto result = static_cast<int>(syscall(SYS_close, descriptor));
  return fails ? static_cast<int>(limits::fail(ENOSPC)) : result;
}
