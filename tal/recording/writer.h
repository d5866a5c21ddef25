// From a moment to its line in a recording.
#pragma once

#include <cstddef>
#include <string>

#include "tal/recording/moment.h"

namespace tal::recording {

inline constexpr int kFormatVersion = 1;

// The keys in front of the first section end within so many bytes of a line.
inline constexpr std::size_t kHeadingLimit = 1024;

// The server name as a recording can hold it: one whose form in a recording is so long that the
// heading would exceed its limit is cut.
std::string recordableServer(std::string_view server);

// Appends the line with its line end.
void appendLine(std::string& out, const Moment& moment);

}  // namespace tal::recording
