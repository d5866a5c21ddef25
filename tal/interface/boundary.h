// The boundary between C callers and this library: arguments are checked, and no exception leaves.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string_view>
#include <vector>

#include "engine/tal.h"
#include "tal/status.h"

namespace tal::interface {

// Longest server name, user and password, in bytes.
inline constexpr std::size_t kCredentialLimit = 255;

constexpr std::int16_t code(Status status) noexcept { return static_cast<std::int16_t>(status); }

// Runs `action` and returns its outcome as a status of the interface. Throws nothing.
template <typename Action>
std::int16_t guarded(const Action& action) noexcept {
  try {
    action();
    return code(Status::kSuccess);
  } catch (const Failure& failure) {
    return code(failure.status());
  } catch (const std::bad_alloc&) {
    return code(Status::kOutOfMemory);
  } catch (...) {
    return code(Status::kInternalError);
  }
}

// The object that `pointer` points to. Throws Failure kBadArgument for a null pointer.
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

// A file name. Reads no more bytes than a name can have.
inline std::string_view fileName(const char* text) {
  return {text, strnlen(&required(text), TAL_NAME_SIZE)};
}

// The entry at `index`, counted from 0. Beyond the last one it throws Failure kNoEntry, which ends
// a list.
template <typename Entry>
const Entry& entryAt(const std::vector<Entry>& list, std::uint32_t index) {
  if (index >= list.size()) throw Failure(Status::kNoEntry);
  return list[index];
}

}  // namespace tal::interface
