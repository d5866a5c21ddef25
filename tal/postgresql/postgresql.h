// The engine over a PostgreSQL server, version 14 or later.
#pragma once

#include <memory>
#include <string_view>

#include "tal/credentials.h"
#include "tal/engine.h"

namespace tal::postgresql {

// Logs in to the server that `location` names (what follows "postgresql://", see location.h) and
// checks its version and the account's privileges. With an empty password the password file of the
// client library may supply one; an empty user means the user of the operating system. Throws
// Failure with the reason if any of this fails. Takes at most 10 s.
std::unique_ptr<Engine> open(std::string_view location, const Credentials& credentials);

}  // namespace tal::postgresql
