// Texts of the engine's structures.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

#include "orv/String.h"

// The text of a fixed field: up to its NUL, or to the field's end where none stands.
template <std::size_t kSize>
[[nodiscard]] orv::String textOf(const char (&field)[kSize]) {
  return orv::String(std::string_view(field, strnlen(field, kSize)));
}
