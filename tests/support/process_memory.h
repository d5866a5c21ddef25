// The memory of a process.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string_view>

namespace testing_support {

// Of this process, in KiB. Both throw std::runtime_error if the system does not say.
long residentMemory();
long peakResidentMemory();

// Resets the peak to the memory that is resident now. Throws std::runtime_error if that is
// impossible.
void resetPeak();

// Sanitizers keep freed memory, and map far more than there is.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kMemoryIsAsUsual = false;
#else
inline constexpr bool kMemoryIsAsUsual = true;
#endif

// How often these bytes are in the memory of a process that runs, if its memory is as
// usual. Needs root. Throws
// std::runtime_error if the memory cannot be read.
std::size_t copiesIn(pid_t process, std::string_view bytes);

}  // namespace testing_support
