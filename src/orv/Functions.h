// What the program asks of the operating system, beside streams.
#pragma once

#include <cstddef>
#include <ctime>

#include "orv/Result.h"
#include "orv/String.h"

namespace orv {

using ThreadBody = void* (*)(void*);

// Starts `body(argument)` on a detached thread that carries `name` (the system shows its first 15
// bytes). Stop signals stay with the threads that were there before. Returns 0 or a result code; on
// success the thread owns whatever the argument stands for.
Result ORVThreadCreate(ThreadBody body, void* argument, const char* name);

struct DirHandle;

// A handle that ORVDirClose takes, or null if the path cannot be opened as a folder.
DirHandle* ORVDirOpen(const String& path);
void ORVDirClose(DirHandle* handle) noexcept;

// Makes one folder with these permissions, less the process's mask. A folder that is there already
// (another process may have been faster) is no failure. Returns 0 or a result code.
Result ORVDirCreate(const String& path, unsigned permissions);

// True if a status query on the path succeeds.
bool ORVPathExists(const String& path);

struct LocalTime {
  std::time_t seconds;
};

LocalTime ORVTimeGetLocal() noexcept;
std::time_t ORVTimeToPosix(const LocalTime& time) noexcept;

// Gives memory that was freed back to the system.
void returnFreeMemory() noexcept;

// Copies the text's bytes into `buffer`, cut at a character to fit with a closing NUL. `size` is
// the buffer's, at least 1.
void ORVUnicodeToAnsi(const String& text, char* buffer, std::size_t size);

// Copies a narrow text, cut to fit with a closing NUL. `size` is the buffer's, at least 1.
void ORVStrCpyA(char* buffer, std::size_t size, const char* text) noexcept;

}  // namespace orv
