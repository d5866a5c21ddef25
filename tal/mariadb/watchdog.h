// A time limit on the client library that holds whatever it is doing.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include "tal/sql/deadline.h"

namespace tal::mariadb {

// The library waits by itself while it negotiates encryption, asks again after a time-out on an
// encrypted connection, and asks for nothing while data keeps coming. So a thread, which lives as
// long as this object, shuts the socket down at the deadline: all that the library does with it
// fails then.
class Watchdog {
 public:
  explicit Watchdog(const sql::Deadline& deadline);
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;
  ~Watchdog();

  // Names the socket, as soon as there is one: -1 is ignored, and so are all but the first. It may
  // be closed at any time.
  void guard(int socket) noexcept;

  // Whether the deadline has passed while the socket was guarded.
  [[nodiscard]] bool hasBitten() const;

 private:
  void watch(const sql::Deadline& deadline);
  void bite() noexcept;

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  int socket_ = -1;  // a duplicate, so that its number means this socket until the end
  bool isOver_ = false;
  bool isLate_ = false;
  bool hasBitten_ = false;
  std::thread thread_;
};

}  // namespace tal::mariadb
