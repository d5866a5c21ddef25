// Waiting for what others do in their own time.
#pragma once

#include <chrono>
#include <functional>

namespace testing_support {

// Asks until the condition holds, at most until kDeadline. Returns whether it came to hold.
[[nodiscard]] bool waitUntil(const std::function<bool()>& condition,
                             std::chrono::milliseconds pause = std::chrono::milliseconds(5));

}  // namespace testing_support
