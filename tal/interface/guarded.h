// The wall between this library's exceptions and its C callers.
#pragma once

#include <cstdint>
#include <new>

#include "tal/failure.h"
#include "tal/status.h"

namespace tal::interface {

constexpr std::int16_t code(Status status) noexcept { return static_cast<std::int16_t>(status); }

// Runs `action` and returns what became of it as a status of the interface. Nothing is thrown.
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

}  // namespace tal::interface
