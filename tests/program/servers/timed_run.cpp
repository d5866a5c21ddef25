#include "tests/program/servers/timed_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace servers_testing {
namespace {

using testing_support::Ending;

// The last line of a refresh.
constexpr const char* kLastLine = "\tTCP/IP Remote Sessions:";

// Last lines of the sections: the rule below the header of an empty list, a handle, a connection,
// the usage, the communication. A server may be lost between two sections of a refresh.
constexpr std::array<std::string_view, 5> kSectionEnds = {
    "=====", "\t\t\tTransaction State:", "\tTotal Connection Time:", "\tLocks:", kLastLine};

bool endsSection(std::string_view line) {
  return std::ranges::any_of(kSectionEnds,
                             [line](std::string_view end) { return line.starts_with(end); });
}

}  // namespace

TimedRun::TimedRun(const Target& target, std::chrono::seconds rate)
    : monitor_(target,
               {
                   {"REFR", std::to_string(rate.count())},
                   {"OUTP", "BOTH"                      },
                   {"NAME", "zelk.log"                  }
}),
      process_(monitor_.command(kTimed)) {
  EXPECT_TRUE(process_.waitForOutput(kLastLine));
  EXPECT_TRUE(process_.waitForOutput("Type q to stop."));
}

bool TimedRun::waitForRefreshes(int number) {
  int complete = 0;
  while (complete < number && process_.waitForOutput(kLastLine, complete + 1)) ++complete;
  return complete == number;
}

std::chrono::steady_clock::time_point TimedRun::expectEnd(int status) {
  EXPECT_EQ(process_.wait(), Ending::exit(1));
  const auto ended = std::chrono::steady_clock::now();
  EXPECT_EQ(process_.error(), failureText(status) + "\n");

  const std::string log = monitor_.log();
  EXPECT_TRUE(log.ends_with("\n"));
  const std::vector<std::string> lines = linesOf(log);
  EXPECT_TRUE(endsSection(lines.back())) << lines.back();
  return ended;
}

void TimedRun::stop() {
  process_.closeInput();
  EXPECT_EQ(process_.wait(), Ending::exit(0));
}

}  // namespace servers_testing
