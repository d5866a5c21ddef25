// The memory of this process.
#pragma once

namespace testing_support {

// In KiB. Both throw std::runtime_error if the system does not say.
long residentMemory();
long peakResidentMemory();

// Resets the peak to the memory that is resident now. Throws std::runtime_error if that is
// impossible.
void resetPeak();

}  // namespace testing_support
