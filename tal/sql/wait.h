// Waiting for a connection's socket.
#pragma once

#include "tal/sql/deadline.h"

namespace tal::sql {

// Waits until `socket` is ready for one of `events` (POLLIN, POLLOUT as poll() takes them) and
// returns those it is ready for; an error on the socket counts as ready, because the next read says
// more about it. Signals do not end the wait. Throws Failure(kNoAnswer) when `deadline` passes, and
// at once when it has passed, ready or not.
short waitForSocket(int socket, short events, const Deadline& deadline);

}  // namespace tal::sql
