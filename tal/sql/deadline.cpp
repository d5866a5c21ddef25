#include "tal/sql/deadline.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

#include "tal/status.h"

namespace tal::sql {

short waitForSocket(int socket, short events, const Deadline& deadline) {
  pollfd entry{.fd = socket, .events = events, .revents = 0};
  for (;;) {
    // A peer that never stops sending is always ready, so that readiness must not outlive the
    // limit.
    if (deadline.passed()) throw Failure(Status::kNoAnswer);
    const int ready = ::poll(&entry, 1, static_cast<int>(deadline.remaining().count()));
    if (ready > 0) return (entry.revents & events) != 0 ? entry.revents : events;
    if (ready < 0 && errno != EINTR) throw Failure(Status::kInternalError);
  }
}

SocketCutter::~SocketCutter() {
  if (duplicate_ >= 0) ::close(duplicate_);
}

void SocketCutter::watch(int socket) noexcept {
  const std::lock_guard lock(mutex_);
  if (duplicate_ >= 0) ::close(duplicate_);
  duplicate_ = socket >= 0 ? ::fcntl(socket, F_DUPFD_CLOEXEC, 0) : -1;
  if (isCut_) ::shutdown(duplicate_, SHUT_RDWR);
}

void SocketCutter::cut() noexcept {
  const std::lock_guard lock(mutex_);
  isCut_ = true;
  if (duplicate_ >= 0) ::shutdown(duplicate_, SHUT_RDWR);
}

}  // namespace tal::sql
