// Makes a session on the server at a location.
#pragma once

#include "tal/credentials.h"
#include "tal/mariadb/connection.h"
#include "tal/mariadb/location.h"
#include "tal/mariadb/login_options.h"
#include "tal/sql/deadline.h"

namespace tal::mariadb {

// Prepares the client library once for the process; login() does so too. The library makes the
// whole process ignore SIGPIPE, so the program's own handling is restored.
void initialiseClientLibrary();

// Logs in with exactly these `credentials`; `cutter` watches the socket. If a host has several
// addresses, each is tried with an equal share of the time. If encryption is wanted, nothing is
// sent without it. To another machine it is wanted unless `encryption` refuses it. Throws Failure
// with the reason, and kNoAnswer when `deadline` passes.
SessionHandle login(const Location& location, const Credentials& credentials,
                    const Encryption& encryption, sql::SocketCutter& cutter,
                    const sql::Deadline& deadline);

}  // namespace tal::mariadb
