// What the process asks of the operating system for itself: standard descriptors, signals, threads,
// memory and the clock.
#pragma once

#include <atomic>
#include <ctime>

#include "orv/Result.h"

namespace orv {

// To be called before anything is opened. If standard input, output or error is closed, opens it in
// a way that every use fails: otherwise the next file or connection would take its number, and
// reports would go into it. Throws ResultException.
void keepStandardDescriptors();

// From now on messages, the operating system's included, are in the language of the user's locale,
// and the system's are in UTF-8. Nothing else of the locale is used.
void useMessageLanguage() noexcept;

// From now on SIGINT, SIGTERM and SIGHUP set `stopRequested` and wake a StdioInputStream that waits
// for input; a second one ends the process at once. A signal that is ignored stays ignored. The
// flag must live as long as the process. Throws ResultException if the system has no pipe left.
void installStopSignals(std::atomic<bool>& stopRequested);

// True once a stop signal has come.
bool stopSignalCame() noexcept;

// A descriptor that becomes readable with the first stop signal; -1 before installStopSignals.
int stopSignalDescriptor() noexcept;

// From now on a write beyond the process's limit on file sizes fails like any other write, instead
// of ending the process without a word.
void ignoreFileSizeSignal() noexcept;

// From now on the process leaves no core file, and the user's other processes cannot look into its
// memory, where a password stands.
void keepMemoryPrivate() noexcept;

using ThreadBody = void* (*)(void*);

// Starts `body(argument)` on a detached thread called `name` (the system shows the first 15 bytes).
// Stop signals go to the other threads only. Returns 0 or a result code; after success the thread
// owns what the argument points to.
Result ORVThreadCreate(ThreadBody body, void* argument, const char* name);

// Returns freed memory to the system.
void returnFreeMemory() noexcept;

struct LocalTime {
  std::time_t seconds;
};

LocalTime ORVTimeGetLocal() noexcept;
std::time_t ORVTimeToPosix(const LocalTime& time) noexcept;

}  // namespace orv
