// What a process did so far that costs or that must be undone.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace limits {

struct Counts {
  // Through operator new, whoever asked.
  std::atomic<std::uint64_t> allocations{0};
  std::atomic<std::uint64_t> releases{0};
  std::atomic<std::uint64_t> engineCalls{0};
  // Begun and not ended; below zero: ended without having begun.
  std::atomic<std::int64_t> starts{0};
  std::atomic<std::int64_t> connections{0};
  std::atomic<std::int64_t> snapshots{0};
};

// Those of this process; all zero at its start.
Counts& counts() noexcept;

// Starts anew at zero, with counts that the processes forked from now on share.
void shareCounts();

// Lets the allocation with this number fail, counted from 1; 0: none. With `forGood` all later ones
// fail too.
void failAllocation(std::uint64_t number, bool forGood) noexcept;

}  // namespace limits
