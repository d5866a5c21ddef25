// Scenario files.
#pragma once

#include <cstddef>
#include <string>

namespace tal::sim {

// People write scenarios by hand and use counts for large numbers of items, so files are small.
inline constexpr std::size_t kFileLimit = std::size_t{1} << 20;

// The bytes of a regular file. Throws ScenarioError if it cannot be read or is larger than the
// limit. Waits only for the disk.
std::string readFile(const std::string& path);

}  // namespace tal::sim
