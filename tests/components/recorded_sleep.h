// Sleeping that takes no time. The test program itself defines usleep().
#pragma once

#include <functional>
#include <vector>

namespace component_tests {

struct RecordedSleep {
  std::vector<unsigned> slices;  // asked for so far, microseconds
  // Runs within each slice.
  std::function<void()> onSlice = [] {};
};

// Of the main thread, the only one that these tests have; replaced by a new one before each test.
RecordedSleep& sleeping();

}  // namespace component_tests
