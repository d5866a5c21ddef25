// Waiting for a condition that others fulfil.
#pragma once

#include <chrono>
#include <functional>

namespace testing_support {

// Checks the condition until it holds, at most for kDeadline. Returns whether it holds.
[[nodiscard]] bool waitUntil(const std::function<bool()>& condition,
                             std::chrono::milliseconds pause = std::chrono::milliseconds(5));

}  // namespace testing_support
