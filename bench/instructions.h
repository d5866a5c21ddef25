// Counted instead of timed, for what is lost in the noise of time.
#pragma once

#include <string>
#include <vector>

namespace bench {

// The instructions that a run of the command executes in its own process, without the kernel's.
// Standard output goes nowhere, and so does what valgrind says. `scratch` is a file that it may
// write. Throws std::runtime_error when the run fails.
double instructionsOf(const std::vector<std::string>& command, const std::string& scratch);

}  // namespace bench
