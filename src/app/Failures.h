// How failures are shown to the user.
#pragma once

#include "orv/Exception.h"

// Exit codes of failures that have no description; the system shows their low byte.
inline constexpr int kExitOutOfMemory = static_cast<int>(0x8007000EU);
inline constexpr int kExitUnknownFailure = static_cast<int>(0x80004005U);

// Each function prints its line on standard error (in JSON mode as a member of the document) and
// returns the exit code. If the line cannot be written, the exit code is still the same.

// A description; exit code 1. Closes the document.
int reportDescription(const orv::String& description);
// A failure of the core library: its description, or the fatal-error message with its result; a
// failure without either ends the program with exit code 0.
int reportFailure(const orv::Exception& failure);
// The fatal-error message. The JSON document stays open (deliberate).
int reportFatal(int code);

// Prints a line on standard error, in JSON mode as a member of the document. Changes nothing else.
void reportWarning(const orv::String& text);

// After this call, an uncaught exception ends the process with a line on standard error and the
// exit code of its kind, without a core file.
void installTerminateHandler() noexcept;
