// Scenario files.
#pragma once

#include <cstddef>
#include <string>

namespace tal::sim {

// A scenario is written by hand, and counts stand for the masses in it.
inline constexpr std::size_t kFileLimit = std::size_t{1} << 20;

// The bytes of a regular file. Throws ScenarioError for one that cannot be read or is larger than
// the limit; never waits for anything but the disk.
std::string readFile(const std::string& path);

}  // namespace tal::sim
