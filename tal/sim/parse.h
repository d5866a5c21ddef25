// Reading a scenario.
#pragma once

#include <string_view>

#include "tal/sim/errors.h"
#include "tal/sim/scenario.h"

namespace tal::sim {

// Reads a text of any bytes. Throws ScenarioError for a text that is not a scenario; its message
// begins with `name` and the line.
Scenario parseScenario(std::string_view text, std::string_view name);

}  // namespace tal::sim
