// zelk watching a server at a fixed rate.
#pragma once

#include <chrono>

#include "tests/program/servers/monitor.h"
#include "tests/support/process.h"

namespace servers_testing {

// Writes to its standard output and a log.
class TimedRun {
 public:
  // Returns when the first refresh is complete.
  TimedRun(const Target& target, std::chrono::seconds rate);

  // Returns when so many refreshes are complete, counted from the start; false if the run ended
  // before that or the next is long in coming.
  bool waitForRefreshes(int number);

  // Expects the run to end with this failure, and the log with a complete section. Returns when it
  // ended.
  std::chrono::steady_clock::time_point expectEnd(int status);

  // Expects the run to end by itself when it is asked to.
  void stop();

 private:
  Monitor monitor_;
  testing_support::Process process_;
};

}  // namespace servers_testing
