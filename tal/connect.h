// From a server name to an open engine.
#pragma once

#include <memory>
#include <string_view>

#include "tal/credentials.h"
#include "tal/engine.h"

namespace tal {

// Opens the engine that `server` names by its scheme: "sim:", "postgresql://", "mariadb://" or
// "replay:". All but the first are modules (see module.h); a line on standard error says what is
// missing if one cannot be loaded. Throws Failure: kUnknownScheme, kBadServerName, kModuleMissing,
// kModuleForeign, or the reason why the engine could not be opened.
std::unique_ptr<Engine> openEngine(std::string_view server, const Credentials& credentials);

// Opens the engine behind handle -1, which is the built-in simulation.
std::unique_ptr<Engine> openLocalEngine();

}  // namespace tal
