// A program run to its end, and what it cost.
#pragma once

#include <string>
#include <vector>

namespace bench {

struct Cost {
  double cpuSeconds = 0;   // user and system
  long peakKilobytes = 0;  // of resident memory
  int exitStatus = -1;
};

// Where a child's standard output goes.
enum class Output { kDevNull, kPipe };

// Runs `command`, reads a pipe dry while it runs, and returns what the child alone has cost.
// Throws std::system_error if it cannot be started.
Cost run(const std::vector<std::string>& command, Output output);

}  // namespace bench
