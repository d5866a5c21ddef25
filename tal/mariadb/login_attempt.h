// One attempt to log in at one address.
#pragma once

#include "tal/credentials.h"
#include "tal/mariadb/connection.h"
#include "tal/mariadb/location.h"
#include "tal/mariadb/login_options.h"
#include "tal/sql/deadline.h"

namespace tal::mariadb {

// The place, the account and the encryption of a login.
struct Target {
  const Location& location;
  const Credentials& credentials;
  const Encryption& encryption;
  sql::SocketCutter& cutter;
};

// Logs in at `host`, which is null for a socket; the cutter watches the socket. Over TCP the
// greeting is read before anything is sent. So a peer with another protocol, or a server without
// the encryption that is wanted, gets no data. Throws Failure with the reason, and kNoAnswer when
// `deadline` passes.
SessionHandle tryLogin(const Target& target, const char* host, const sql::Deadline& deadline);

}  // namespace tal::mariadb
