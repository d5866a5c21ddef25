// Lists that are cut, because a few clients could otherwise fill every report.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tal/engine.h"

namespace tal::sql {

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
