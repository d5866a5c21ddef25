// Writes a moment as a line of a recording.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "tal/recording/moment.h"

namespace tal::recording {

inline constexpr int kFormatVersion = 1;

// The keys before the first section end within this many bytes of a line.
inline constexpr std::size_t kHeadingLimit = 1024;

// The server name as a recording can hold it. A name is cut if its form in a recording would make
// the heading longer than its limit.
std::string recordableServer(std::string_view server);

// Gives the line to the caller in parts, the line end last, so that a large moment is not in memory
// twice.
void writeLine(const Moment& moment, const std::function<void(std::string_view part)>& take);

// Appends the line with its line end.
void appendLine(std::string& out, const Moment& moment);

}  // namespace tal::recording
