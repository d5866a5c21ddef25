// From a location to a session on the server.
#pragma once

#include "tal/credentials.h"
#include "tal/postgresql/location.h"
#include "tal/postgresql/result.h"
#include "tal/sql/deadline.h"
#include "tal/sql/socket_cutter.h"

namespace tal::postgresql {

// Logs in. A host with several addresses is tried at each, with an equal share of the time. Who
// answers is not trusted:
//
// - To another machine the connection is encrypted, and the certificate is that of the host where
//   the user has root certificates to verify it by. On this machine encryption is used where the
//   server offers it.
// - The password is used for SCRAM alone: with encryption bound to this very connection, so that
//   nobody can pass it on, without it after a look at what is asked for.
//
// Exceptions and the user's wishes: see login_rules.h and login_options.h. Throws Failure with the
// reason, kNoAnswer when `deadline` passes.
ConnectionHandle login(const Location& location, const Credentials& credentials,
                       sql::SocketCutter& cutter, const sql::Deadline& deadline);

}  // namespace tal::postgresql
