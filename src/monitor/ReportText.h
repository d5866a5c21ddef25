// Pieces of report lines that several sections share.
#pragma once

#include <cstddef>

#include "orv/String.h"
#include "util/Utils.h"

// A label of exactly this width; a label of another width does not compile.
template <std::size_t kWidth>
consteval const char* label(const char (&text)[kWidth + 1]) {
  return text;
}

// The number without a sign, as the engine counts it.
[[nodiscard]] inline orv::String unsignedText(long number) {
  return orv::String::valueOf(static_cast<unsigned long>(number));
}

// A file name as JSON shows it: each backslash is doubled. Nothing else is escaped (deliberate).
[[nodiscard]] inline orv::String withBackslashesDoubled(orv::String name) {
  Utils::addBackslashChars(name, '\\');
  return name;
}
