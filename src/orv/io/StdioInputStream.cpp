#include "orv/io/StdioInputStream.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <iterator>

#include "orv/Exception.h"
#include "orv/StopSignals.h"
#include "orv/io/FileDescriptor.h"

namespace orv::io {
namespace {

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

std::size_t StdioInputStream::read(char* buffer, std::size_t size) {
  if (!waitForInput()) return 0;
  try {
    return readSome(STDIN_FILENO, buffer, size);
  } catch (const ResultException&) {
    return 0;
  }
}

}  // namespace orv::io
