// Ending a wait that a client library is in.
#pragma once

#include <mutex>

namespace tal::sql {

// Shuts a socket down from another thread: whatever waits for it then goes on, and fails.
class SocketCutter {
 public:
  SocketCutter() = default;
  SocketCutter(const SocketCutter&) = delete;
  SocketCutter& operator=(const SocketCutter&) = delete;
  ~SocketCutter();

  // Names the socket, in place of an earlier one; -1 names none. It may be closed at any time: a
  // duplicate is kept, which closes with this object.
  void watch(int socket) noexcept;

  // Shuts down the socket, and each that is named from now on.
  void cut() noexcept;

 private:
  std::mutex mutex_;
  int duplicate_ = -1;
  bool isCut_ = false;
};

}  // namespace tal::sql
