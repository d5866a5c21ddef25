// Limits on one answer of a server: its memory, and its lines in a report. A few clients could
// otherwise fill both.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tal/engine.h"

namespace tal::sql {

// Bytes of one answer as they come from the network. Rows in memory take several times as much.
inline constexpr std::uint64_t kMostBytes = 64ULL << 20U;

// Rows of one answer.
inline constexpr std::size_t kMostRows = 250'000;

// Handles in one list. A list that has more is cut by limitHandles().
inline constexpr std::size_t kMostHandles = 50'000;

// How many handles of each client a list of `clients` clients shows that has `handles` in all:
// every one up to kMostHandles, above it an equal share, at least 1.
std::size_t handlesOfEachClient(std::size_t handles, std::size_t clients) noexcept;

// What stands in the place of a name in the handle that ends a list of handles of which `count` are
// left out: "(12 more)".
std::string moreText(std::size_t count);

// Cuts a list with too many handles: each client keeps those of its share, waiting ones first, and
// each list of handles that became shorter ends with a handle named by moreText(). Clients are told
// apart by index and name in the list of files.
void limitHandles(std::vector<OpenFile>& files);
void limitHandles(std::vector<Client>& clients);

}  // namespace tal::sql
