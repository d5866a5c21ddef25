// Texts and times of a recording.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tal::recording {

// Appends a text as a JSON string, which is always valid UTF-8. A byte that is not UTF-8 is written
// {xHH}, and a brace that could be read as the start of such a form is written {x7B}.
void appendText(std::string& out, std::string_view text);

// The original bytes of a string in a recording.
std::string textOf(std::string_view recorded);

// A time in microseconds since 1970 UTC, as 2026-11-21T19:14:35.123456Z.
std::string timeText(std::int64_t microseconds);

// Reads such a time. The fraction of a second may have one to six digits or be left out. Returns
// nothing for any other text.
std::optional<std::int64_t> timeOf(std::string_view text);

// Minutes ahead of UTC, as +01:00.
std::string zoneText(std::int32_t minutes);
std::optional<std::int32_t> zoneOf(std::string_view text);

}  // namespace tal::recording
