// Reading a scenario.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tal/sim/document.h"
#include "tal/sim/scenario.h"

namespace tal::sim {

// The text of demo.toml, the built-in scenario: a small shop at work, in which every code of the
// interface occurs. Handle -1 serves it too.
extern const char kDemo[];

// People write scenarios by hand and use counts for large numbers of items, so files are small.
inline constexpr std::size_t kFileLimit = std::size_t{1} << 20;

// Reads a text of any bytes. Throws ScenarioError for a text that is not a scenario; its message
// begins with `name` and the line.
Scenario parseScenario(std::string_view text, std::string_view name);

// Reads a regular file; waits only for the disk. Throws ScenarioError also if the file cannot be
// read or is larger than the limit.
Scenario scenarioIn(const std::string& path);

}  // namespace tal::sim
