// Waiting for what a server does in its own time.
#pragma once

#include <chrono>
#include <functional>
#include <thread>

#include "tests/support/process.h"

namespace mariadb_testing {

// The server renews its picture of transactions only when nobody has read it for this long.
inline constexpr std::chrono::milliseconds kPictureAge{110};

// Asks until the condition holds, at most until testing_support::kDeadline; whether it did.
inline bool waitUntil(const std::function<bool()>& condition,
                      std::chrono::milliseconds pause = std::chrono::milliseconds(10)) {
  const auto end = std::chrono::steady_clock::now() + testing_support::kDeadline;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(pause);
  }
  return true;
}

}  // namespace mariadb_testing
