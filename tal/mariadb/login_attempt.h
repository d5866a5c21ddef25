// One attempt to log in at one address.
#pragma once

#include "tal/credentials.h"
#include "tal/mariadb/location.h"
#include "tal/mariadb/login_options.h"
#include "tal/mariadb/result.h"
#include "tal/sql/deadline.h"
#include "tal/sql/socket_cutter.h"

namespace tal::mariadb {

// Where to log in, as whom, and how.
struct Target {
  const Location& location;
  const Credentials& credentials;
  const Encryption& encryption;
  sql::SocketCutter& cutter;
};

// Logs in at `host`, which is null for a socket; the cutter watches the socket. Over TCP the
// greeting is read before anything is said: what speaks another protocol, and a server that does
// not offer the encryption that is wanted, learn nothing. Throws Failure with the reason, kNoAnswer
// when `deadline` passes.
SessionHandle tryLogin(const Target& target, const char* host, const sql::Deadline& deadline);

}  // namespace tal::mariadb
