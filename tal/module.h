// The engines that need a client library are modules: shared objects in the folder of this library,
// loaded when their scheme is first used, so that nobody else needs the libraries that they link.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tal/credentials.h"
#include "tal/engine.h"

namespace tal {

// Opens an engine; the argument is the rest of the server name after the scheme. Throws Failure.
using OpenEngine = std::unique_ptr<Engine>(std::string_view location,
                                           const Credentials& credentials);

// Loads the module of that file name from the folder of this library and from nowhere else. It
// stays loaded until the process ends. Throws Failure kModuleMissing, after a line on standard
// error that says what is missing, or kModuleForeign.
OpenEngine& moduleOf(const std::string& fileName);

}  // namespace tal
