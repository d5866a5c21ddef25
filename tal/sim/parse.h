// Reading a scenario.
#pragma once

#include <string_view>

#include "tal/sim/errors.h"
#include "tal/sim/scenario.h"

namespace tal::sim {

// Reads a text of any bytes. Throws ScenarioError, whose text begins with `name` and the line, for
// what is not a scenario.
Scenario parseScenario(std::string_view text, std::string_view name);

}  // namespace tal::sim
