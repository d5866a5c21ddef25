// Limits on waiting: no call of this library may hang, whatever a server does.
#pragma once

#include <algorithm>
#include <chrono>
#include <mutex>

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

// Waits until `socket` is ready for one of `events` (POLLIN, POLLOUT as poll() takes them) and
// returns those it is ready for; an error on the socket counts as ready, because the next read says
// more about it. Signals do not end the wait. Throws Failure(kNoAnswer) when `deadline` passes, and
// at once when it has passed, ready or not.
short waitForSocket(int socket, short events, const Deadline& deadline);

// Shuts a socket down from another thread. A function that waits for the socket then returns with
// an error.
class SocketCutter {
 public:
  SocketCutter() = default;
  SocketCutter(const SocketCutter&) = delete;
  SocketCutter& operator=(const SocketCutter&) = delete;
  ~SocketCutter();

  // Names the socket, in place of an earlier one; -1 names none. The caller may close it at any
  // time, because this object keeps a duplicate and closes it at its end.
  void watch(int socket) noexcept;

  // Shuts down the socket, and each one that is named later.
  void cut() noexcept;

 private:
  std::mutex mutex_;
  int duplicate_ = -1;
  bool isCut_ = false;
};

}  // namespace tal::sql
