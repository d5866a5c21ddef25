// The process's signals: those that ask it to stop, and one that would end it.
#pragma once

#include <atomic>

namespace orv {

// From now on SIGINT, SIGTERM and SIGHUP set `stopRequested` and wake a StdioInputStream that waits
// for input; a second one ends the process at once. A signal that is ignored stays ignored. The
// flag must live as long as the process. Throws ResultException if the system has no pipe left.
void installStopSignals(std::atomic<bool>& stopRequested);

// From now on a write beyond the process's limit on file sizes fails like any other, instead of
// ending the process without a word.
void ignoreFileSizeSignal() noexcept;

// True once a stop signal has come.
bool stopSignalCame() noexcept;

// A descriptor that becomes readable with the first stop signal; -1 while none is installed.
int stopSignalDescriptor() noexcept;

}  // namespace orv
