// From a location to a session on the server.
#pragma once

#include "tal/credentials.h"
#include "tal/mariadb/location.h"
#include "tal/mariadb/login_options.h"
#include "tal/mariadb/result.h"
#include "tal/sql/deadline.h"
#include "tal/sql/socket_cutter.h"

namespace tal::mariadb {

// Prepares the client library, once for the process; login() does so too. The library ignores
// SIGPIPE for the whole process, so the program's own handling is put back. Variables that make the
// library load code of anybody's choice are removed from the environment.
void initialiseClientLibrary();

// Logs in by `credentials` as they are; `cutter` watches the socket. A host with several addresses
// is tried at each, with an equal share of the time. Encryption that is wanted is required before
// anything is said, and to another machine it is wanted unless `encryption` refuses it. Throws
// Failure with the reason, kNoAnswer when `deadline` passes.
SessionHandle login(const Location& location, const Credentials& credentials,
                    const Encryption& encryption, sql::SocketCutter& cutter,
                    const sql::Deadline& deadline);

}  // namespace tal::mariadb
