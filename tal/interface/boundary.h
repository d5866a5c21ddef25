// What callers hand in.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

#include "engine/tal.h"
#include "tal/failure.h"
#include "tal/status.h"

namespace tal::interface {

// Longest server name, user and password, in bytes.
inline constexpr std::size_t kCredentialLimit = 255;

// What `pointer` points to. Throws Failure kBadArgument for a null pointer.
template <typename Value>
Value& required(Value* pointer) {
  if (pointer == nullptr) throw Failure(Status::kBadArgument);
  return *pointer;
}

// Throws Failure kBadArgument for a null pointer and for a text longer than the interface allows.
inline std::string_view credential(const char* text) {
  const std::size_t length = strnlen(&required(text), kCredentialLimit + 1);
  if (length > kCredentialLimit) throw Failure(Status::kBadArgument);
  return {text, length};
}

// A file name, of which never more is read than a name can have.
inline std::string_view fileName(const char* text) {
  return {text, strnlen(&required(text), TAL_NAME_SIZE)};
}

}  // namespace tal::interface
