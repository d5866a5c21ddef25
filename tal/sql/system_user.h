// The user who runs the program.
#pragma once

#include <string>

namespace tal::sql {

// The name of the operating-system user whose rights this process has. Environment and terminal do
// not matter. Throws Failure(kLoginRefused) if the user has no name.
std::string systemUser();

}  // namespace tal::sql
