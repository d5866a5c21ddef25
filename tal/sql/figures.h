// The figures of a server in the fields of the interface.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "tal/engine.h"

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

// The highest value of one figure since the connection was opened. The first sample is its own
// peak.
class Peak {
 public:
  // The gauge for a new sample; `maximum` is 0 if there is none.
  Gauge sample(std::int64_t current, std::int64_t maximum = 0) noexcept {
    highest_ = std::max(highest_, clampUnsigned(current));
    return {clampUnsigned(current), highest_, clampMaximum(maximum)};
  }

 private:
  std::uint32_t highest_ = 0;
};

}  // namespace tal::sql
