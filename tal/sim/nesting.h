// A look at a text before it is given to the TOML library.
#pragma once

#include <string_view>

namespace tal::sim {

// Refuses brackets and dotted keys that are nested far deeper than any scenario needs. The library
// destroys what it has read level by level on the stack, so that an endless "a.a.a.a" would end
// the process. Throws ScenarioError.
void refuseDeepNesting(std::string_view text);

}  // namespace tal::sim
