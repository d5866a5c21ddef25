// Ends a wait inside a client library.
#pragma once

#include <mutex>

namespace tal::sql {

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
