// Makes a session on the server at a location.
#pragma once

#include "tal/credentials.h"
#include "tal/postgresql/connection.h"
#include "tal/postgresql/location.h"
#include "tal/sql/deadline.h"

namespace tal::postgresql {

// Logs in. If a host has several addresses, each is tried with an equal share of the time. The peer
// that answers is not trusted:
//
// - To another machine the connection is encrypted. If the user has root certificates, the
//   certificate of the server is verified and must be that of the host. On this machine encryption
//   is used if the server offers it.
// - The password is used for SCRAM only. With encryption it is bound to this connection, so that
//   nobody can pass it on. Without encryption the request of the server is checked first.
//
// For exceptions and settings of the user see login_rules.h and login_options.h. Throws Failure
// with the reason, and kNoAnswer when `deadline` passes.
ConnectionHandle login(const Location& location, const Credentials& credentials,
                       sql::SocketCutter& cutter, const sql::Deadline& deadline);

}  // namespace tal::postgresql
