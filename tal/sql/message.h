// The lines that this library itself writes on standard error.
#pragma once

#include <string>
#include <string_view>

namespace tal::sql {

// The text of "ORV_MSG_P_N_" and `name` in the message bundle TALMSG, in the language that LANGUAGE
// and the locale of the process request; `name` itself if no bundle has it. The bundles are in
// ../../share/zelk/messages, relative to the folder of this library.
std::string message(std::string_view name);

// Writes one line to standard error, without characters that control a terminal. Writes nothing if
// that is the same file or pipe as standard output, which may hold a report.
void tell(std::string line);

}  // namespace tal::sql
