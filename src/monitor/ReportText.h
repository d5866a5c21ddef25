// Pieces of report lines that several sections share.
#pragma once

#include <cstddef>

#include "orv/String.h"
#include "util/Utils.h"

// A label of exactly this width; another one does not compile.
template <std::size_t kWidth>
consteval const char* label(const char (&text)[kWidth + 1]) {
  return text;
}

// The number as the engine counts it: without a sign.
[[nodiscard]] inline orv::String unsignedText(long number) {
  return orv::String::valueOf(static_cast<unsigned long>(number));
}

// A file name as JSON shows it: with two backslashes for one. Nothing else is escaped
// (deliberate).
[[nodiscard]] inline orv::String withBackslashesDoubled(orv::String name) {
  Utils::addBackslashChars(name, '\\');
  return name;
}
