// One attempt to log in at one address.
#pragma once

#include <optional>

#include "tal/postgresql/connection.h"
#include "tal/postgresql/login_options.h"
#include "tal/sql/deadline.h"

namespace tal::postgresql {

// What an attempt may do with the password.
enum class Asking : std::uint8_t {
  kSafely,  // only in ways that do not show it to the server
  kAnyhow,
};

// Logs in to `target`. Returns nothing if encryption is required and the server does not offer it.
// Notices of the server are dropped. Throws Failure with the reason, and kNoAnswer when `deadline`
// passes.
std::optional<ConnectionHandle> tryLogin(const Target& target, Asking asking,
                                         sql::SocketCutter& cutter, const sql::Deadline& deadline);

}  // namespace tal::postgresql
