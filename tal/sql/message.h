// What this library says on standard error by itself.
#pragma once

#include <string>
#include <string_view>

namespace tal::sql {

// The text of "ORV_MSG_P_N_" and `name` in the message bundle TALMSG, in the language of the
// process's locale; `name` itself where no bundle has it. The bundles lie in
// ../../share/zelk/messages beside the folder of this library.
std::string message(std::string_view name);

// Writes one line to standard error, cleared of what could drive a terminal; nothing when that is
// the file or pipe of standard output, where a report may be.
void tell(std::string line);

}  // namespace tal::sql
