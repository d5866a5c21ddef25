// The engine over a MariaDB server.
#pragma once

#include <memory>
#include <string_view>

#include "tal/credentials.h"
#include "tal/engine.h"

namespace tal::mariadb {

// Logs in to the server at `location`, which is what follows "mariadb://" in the server name (see
// location.h), and checks that the account may see everything that the engine reports. Throws
// Failure: kBadServerName, kVersionNotSupported, or the reason why the login failed.
//
// The promises of sql::openBounded() hold for the engine. No call takes longer than
// sql::kCallLimit, and a lost session is not opened again.
std::unique_ptr<Engine> open(std::string_view location, const Credentials& credentials);

}  // namespace tal::mariadb
