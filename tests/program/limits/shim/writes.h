// Trouble with write(2) and close(2) on standard output and on regular files; standard error is
// left alone.
#pragma once

#include <cstddef>
#include <cstdint>

namespace limits {

enum class Target { kNone, kConsole, kLog, kBoth };

// Each call may write less than it was given, one byte included, or end with EINTR or EAGAIN. The
// seed settles which call does what.
void disturbWrites(std::uint64_t seed) noexcept;

// The target has room for so many bytes: what fits is written, and then there is no space left on
// the device. With both, they share the room.
void limitRoom(Target target, std::size_t bytes) noexcept;

// This write to standard output, from 1, finds no space; those before and behind it do.
void failConsoleWrite(std::uint64_t number) noexcept;

// The log takes every write, and its closing says that there was no space for them, as a full
// network disk does.
void failClosingOfLog() noexcept;

}  // namespace limits
