// Limits on waiting: no call of this library may hang, whatever a server does.
#pragma once

#include <algorithm>
#include <chrono>

namespace tal::sql {

inline constexpr std::chrono::milliseconds kConnectLimit{5000};    // name look-up and login
inline constexpr std::chrono::milliseconds kStatementLimit{5000};  // one statement with its rows
inline constexpr std::chrono::milliseconds kCallLimit{10000};      // one call of the interface

// A point of time after which waiting ends.
class Deadline {
 public:
  using Clock = std::chrono::steady_clock;

  explicit Deadline(std::chrono::milliseconds fromNow) : end_(Clock::now() + fromNow) {}

  // `limit` from now, but no later than this deadline.
  [[nodiscard]] Deadline within(std::chrono::milliseconds limit) const {
    return Deadline(std::min(limit, remaining()));
  }

  // What is left, rounded up so that a wait for it ends past the deadline; never negative.
  [[nodiscard]] std::chrono::milliseconds remaining() const {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end_ - Clock::now());
    return std::max(left, std::chrono::milliseconds::zero());
  }

  [[nodiscard]] bool passed() const { return remaining() == std::chrono::milliseconds::zero(); }

 private:
  Clock::time_point end_;
};

}  // namespace tal::sql
