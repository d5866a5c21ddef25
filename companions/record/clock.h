// Clocks, and waiting for a time.
#pragma once

#include <cstdint>

#include "tal/recording/moment.h"

namespace companions::record {

// Microseconds since 1970 UTC, by the clock that people set.
std::int64_t wallTime();

// Microseconds by a clock that nobody sets and that counts while the machine sleeps.
std::uint64_t steadyTime();

// How many minutes the local time is ahead of UTC at that wall time.
std::int32_t zoneAt(std::int64_t wallTime);

// After this call SIGINT and SIGTERM request a stop, the second one ends the process at once, and
// SIGHUP requests that the output is opened again. A signal that was ignored stays ignored. Throws
// std::system_error.
void installSignals();

[[nodiscard]] bool stopRequested();

// True once for each request.
[[nodiscard]] bool takeReopenRequest();

// Waits until that steady time. A signal ends the wait earlier. Throws std::system_error.
void waitUntil(std::uint64_t steadyTime);

}  // namespace companions::record
