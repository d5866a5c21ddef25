// Numbers of a server in the 32-bit fields of the interface.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace tal::sql {

// Gauges and totals are clamped, never wrapped. Users see that a figure that stops rising has
// reached its limit, but one that starts again from 0 looks like a restart.
constexpr std::uint32_t clampUnsigned(std::int64_t value) noexcept {
  constexpr std::int64_t kLargest = std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(std::clamp<std::int64_t>(value, 0, kLargest));
}

// A maximum, which is signed in the interface.
constexpr std::int32_t clampMaximum(std::int64_t value) noexcept {
  constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, 0, kLargest));
}

// The sum of two numbers of a server may overflow, so it is clamped.
constexpr std::int64_t saturatingSum(std::int64_t left, std::int64_t right) noexcept {
  std::int64_t sum = 0;
  if (!__builtin_add_overflow(left, right, &sum)) return sum;
  return left < 0 ? std::numeric_limits<std::int64_t>::min()
                  : std::numeric_limits<std::int64_t>::max();
}

// Whole kilobytes that hold `bytes`.
constexpr std::uint32_t kilobytes(std::int64_t bytes) noexcept {
  return clampUnsigned(bytes / 1024 + (bytes % 1024 > 0 ? 1 : 0));
}

}  // namespace tal::sql
