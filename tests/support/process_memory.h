// What memory this process has.
#pragma once

namespace testing_support {

// In KiB. Both throw std::runtime_error when the system does not tell.
long residentMemory();
long peakResidentMemory();

// The peak is what is resident now. Throws std::runtime_error when that is impossible.
void resetPeak();

}  // namespace testing_support
