// Limits on one answer of a server: its memory, and its lines in a report.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tal::sql {

// Bytes of one answer as they come from the network. Rows in memory take several times as much.
inline constexpr std::uint64_t kMostBytes = 64ULL << 20U;

// Rows of one answer.
inline constexpr std::size_t kMostRows = 250'000;

// Handles in one list. See handle_limit.h for a list that has more.
inline constexpr std::size_t kMostHandles = 50'000;

}  // namespace tal::sql
