// What the process sets up with the operating system for itself: standard descriptors, signals,
// threads, memory and the clock.
#pragma once

#include <atomic>
#include <ctime>

#include "orv/Result.h"

namespace orv {

// Call it before anything is opened. If standard input, output or error is closed, this opens it so
// that every use fails. Otherwise the next file or connection would get its number, and reports
// would be written into it. Throws ResultException.
void keepStandardDescriptors();

// After this call, messages are in the language of the user's locale. Those of the operating system
// are too, in UTF-8. Nothing else of the locale is used.
void useMessageLanguage() noexcept;

// After this call SIGINT, SIGTERM and SIGHUP set `stopRequested` and wake a StdioInputStream that
// waits for input; a second one ends the process at once. A signal that is ignored stays ignored.
// The flag must live as long as the process. Throws ResultException if the system cannot make a
// pipe.
void installStopSignals(std::atomic<bool>& stopRequested);

// True once a stop signal has come.
bool stopSignalCame() noexcept;

// A descriptor that becomes readable with the first stop signal; -1 before installStopSignals.
int stopSignalDescriptor() noexcept;

// After this call, a write beyond the file size limit of the process fails like any other write.
// Without it, such a write would end the process without a message.
void ignoreFileSizeSignal() noexcept;

// After this call the process leaves no core file, and other processes of the user cannot read its
// memory, which holds a password.
void keepMemoryPrivate() noexcept;

using ThreadBody = void* (*)(void*);

// Starts `body(argument)` on a detached thread called `name` (the system shows the first 15 bytes).
// Stop signals go to the other threads only. Returns 0 or a result code. After success the thread
// owns the object that the argument points to.
Result ORVThreadCreate(ThreadBody body, void* argument, const char* name);

// Returns freed memory to the system.
void returnFreeMemory() noexcept;

struct LocalTime {
  std::time_t seconds;
};

LocalTime ORVTimeGetLocal() noexcept;
std::time_t ORVTimeToPosix(const LocalTime& time) noexcept;

}  // namespace orv
