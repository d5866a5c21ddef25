// From a location to a session on the server.
#pragma once

#include "tal/credentials.h"
#include "tal/postgresql/handles.h"
#include "tal/postgresql/location.h"
#include "tal/sql/deadline.h"
#include "tal/sql/socket_cutter.h"

namespace tal::postgresql {

// Logs in. A host with several addresses is tried at each, with an equal share of the time. TLS is
// used where the server offers it; outside this machine it is required. Throws Failure
// with the reason, kNoAnswer when `deadline` passes.
ConnectionHandle login(const Location& location, const Credentials& credentials,
                       sql::SocketCutter& cutter, const sql::Deadline& deadline);

}  // namespace tal::postgresql
