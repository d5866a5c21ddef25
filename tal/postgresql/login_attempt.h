// One attempt to log in at one address.
#pragma once

#include "tal/postgresql/handles.h"
#include "tal/postgresql/parameters.h"
#include "tal/sql/deadline.h"
#include "tal/sql/socket_cutter.h"

namespace tal::postgresql {

// Logs in to `target`. Notices of the server are dropped. Throws Failure with the reason, kNoAnswer
// when `deadline` passes.
ConnectionHandle connectTo(const Target& target, sql::SocketCutter& cutter,
                           const sql::Deadline& deadline);

}  // namespace tal::postgresql
