#include "tests/support/wait_until.h"

#include <thread>

#include "tests/support/process.h"

namespace testing_support {

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds pause) {
  const auto end = std::chrono::steady_clock::now() + kDeadline;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(pause);
  }
  return true;
}

}  // namespace testing_support
