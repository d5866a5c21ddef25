// From a moment to its line in a recording.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "tal/recording/moment.h"

namespace tal::recording {

inline constexpr int kFormatVersion = 1;

// The keys in front of the first section end within so many bytes of a line.
inline constexpr std::size_t kHeadingLimit = 1024;

// The server name as a recording can hold it: one whose form in a recording is so long that the
// heading would exceed its limit is cut.
std::string recordableServer(std::string_view server);

// Hands the line over in parts, one after the other and the line end last, so that a large moment
// does not stand in memory twice.
void writeLine(const Moment& moment, const std::function<void(std::string_view part)>& take);

// Appends the line with its line end.
void appendLine(std::string& out, const Moment& moment);

}  // namespace tal::recording
