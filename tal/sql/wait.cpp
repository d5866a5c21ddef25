#include "tal/sql/wait.h"

#include <poll.h>

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

}  // namespace tal::sql
