// From a server name to an open engine.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tal/engine.h"

namespace tal {

// Who logs in. Either text may be empty.
struct Credentials {
  std::string user;
  std::string password;
};

// Opens the engine that `server` names by its scheme ("sim:", "postgresql://", "mariadb://"), the
// latter two by their modules (see module.h).
// Throws Failure: kUnknownScheme, kBadServerName, or why the engine could not be opened.
std::unique_ptr<Engine> openEngine(std::string_view server, const Credentials& credentials);

// Opens the engine behind handle -1, which is the built-in simulation.
std::unique_ptr<Engine> openLocalEngine();

}  // namespace tal
