// The timed and the manual loop, without the engine: no section is switched on but where a test
// counts refreshes.
#include <algorithm>
#include <string>
#include <vector>

#include "monitor/MonitorProcessor.h"
#include "tests/components/component_test.h"
#include "tests/components/recorded_sleep.h"
#include "tests/support/redirected_streams.h"

namespace component_tests {
namespace {

using testing_support::CapturedOutput;
using testing_support::TypedInput;

using Slices = std::vector<unsigned>;

class MonitorLoops : public ComponentTest {
 protected:
  MonitorLoops() {
    config_.refreshRate = 10;
    config_.consoleOutput = true;
  }

  // What the timed loop writes on standard output.
  std::string runTimed() {
    const CapturedOutput output;
    MonitorProcessor(&config_, false).processMonitorRequestsUntilStopped(false);
    return output.text();
  }

  // What the manual loop writes on standard output when these bytes are typed.
  std::string runManually(std::string_view typed) {
    const TypedInput input(typed);
    const CapturedOutput output;
    MonitorProcessor(&config_, false).processMonitorRequestManually(false);
    return output.text();
  }

  ConfigData config_;
};

TEST_F(MonitorLoops, AtALimitOf3TheTimedLoopShowsItsProgressAndSleepsTwice) {
  config_.refreshLimit = 3;

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"()",
                          R"(until the limit  (1 of 3))",
                          R"()",
                          R"(until the limit  (2 of 3))",
                          R"()",
                          R"(until the limit  (3 of 3))",
                      }),
                      runTimed());

  EXPECT_EQ(sleeping().slices, (Slices{3000000, 3000000, 3000000, 1000000,  //
                                       3000000, 3000000, 3000000, 1000000}));
  EXPECT_TRUE(s_stopRequested);
}

TEST_F(MonitorLoops, WithoutTheConsoleTheTimedLoopHasNoPrompts) {
  config_.refreshLimit = 2;
  config_.consoleOutput = false;

  EXPECT_EQ(runTimed(), "");

  EXPECT_EQ(sleeping().slices.size(), 4U);
  EXPECT_TRUE(s_stopRequested);
}

TEST_F(MonitorLoops, AStopDuringTheSleepEndsTheTimedLoop) {
  config_.refreshLimit = 3;
  sleeping().onSlice = [] { s_stopRequested = true; };

  EXPECT_EQ(runTimed(), "\nuntil the limit  (1 of 3)\n");

  EXPECT_EQ(sleeping().slices.size(), 1U);
}

TEST_F(MonitorLoops, AStopBeforeTheTimedLoopLeavesItEmpty) {
  config_.refreshLimit = 3;
  s_stopRequested = true;

  EXPECT_EQ(runTimed(), "");

  EXPECT_TRUE(sleeping().slices.empty());
}

TEST_F(MonitorLoops, SleepIsTakenInSlicesOfAtMost3Seconds) {
  struct Row {
    long milliseconds;
    Slices slices;
  };
  const Row rows[] = {
      {-1,   {}                         },
      {0,    {}                         },
      {1,    {1000}                     },
      {2999, {2999000}                  },
      {3000, {3000000}                  },
      {3001, {3000000, 1000}            },
      {7000, {3000000, 3000000, 1000000}},
  };

  for (const Row& row : rows) {
    sleeping() = RecordedSleep{};
    MonitorProcessor::incrementalSleep(row.milliseconds);
    EXPECT_EQ(sleeping().slices, row.slices) << row.milliseconds;
  }
}

TEST_F(MonitorLoops, AStopEndsTheSleepAfterItsSlice) {
  s_stopRequested = true;
  MonitorProcessor::incrementalSleep(3600000);
  EXPECT_EQ(sleeping().slices, Slices{3000000});

  s_stopRequested = false;
  sleeping() = RecordedSleep{};
  sleeping().onSlice = [] { s_stopRequested = sleeping().slices.size() == 2; };
  MonitorProcessor::incrementalSleep(3600000);
  EXPECT_EQ(sleeping().slices, (Slices{3000000, 3000000}));
}

TEST_F(MonitorLoops, EachRRefreshesOnceAndQEndsTheManualLoop) {
  for (const std::string typed : {"rr\nxq", "RR\nxQ", "q", "rq"}) {
    const auto refreshes = std::count_if(typed.begin(), typed.end(),
                                         [](char key) { return key == 'r' || key == 'R'; });
    std::string expected = "\ntype r or q\n";
    for (auto i = refreshes; i > 0; --i) expected += "\ntype r or q";
    expected += "good bye\n";
    EXPECT_PRED_FORMAT2(sameText, expected, runManually(typed));
  }
}

TEST_F(MonitorLoops, TheManualLoopRefreshesBeforeItAsks) {
  const testing_support::TemporaryFolder folder;
  config_.refreshRate = 0;
  config_.consoleOutput = false;
  config_.fileOutput = true;
  config_.logFileName = orv::String((folder / "log").string());
  config_.showResources = true;
  const TypedInput input("rrq");
  const CapturedOutput output;

  MonitorProcessor(&config_, false).startMonitoring(false, false);

  EXPECT_EQ(engine().callsOf("TalGetZorbUsageEx2(-1)"), 3);
  EXPECT_PRED_FORMAT2(sameText, "\ntype r or q\n\ntype r or q\ntype r or qgood bye\n",
                      output.text());
}

TEST_F(MonitorLoops, TheManualLoopEndsAtThe26thBadByte) {
  const std::string prompt = "\ntype r or q\n";
  const std::string tolerated(25, '\xE4');

  EXPECT_EQ(runManually(tolerated + "q"), prompt + "good bye\n");
  EXPECT_EQ(runManually(tolerated + "\xE4q"), prompt + "bad input\n");
  EXPECT_EQ(runManually(std::string(26, '\0') + "q"), prompt + "bad input\n");
}

// Unlike the thread of the timed loop, which begins anew at each good byte.
TEST_F(MonitorLoops, TheManualLoopCountsBadBytesAllTogether) {
  std::string typed;
  for (int i = 0; i < 26; ++i) typed += "\xE4x";

  EXPECT_EQ(runManually(typed + "q"), "\ntype r or q\nbad input\n");
}

TEST_F(MonitorLoops, TheManualLoopEndsAtALimitOfKeys) {
  config_.refreshLimit = 3;

  EXPECT_EQ(runManually("xyrr"), "\ntype r or q\n\ntype r or qgood bye\n");
}

TEST_F(MonitorLoops, TheManualLoopEndsWithItsInput) {
  EXPECT_EQ(runManually(""), "\ntype r or q\nbad input\n");
}

TEST_F(MonitorLoops, AStopEndsTheManualLoopAtItsNextKey) {
  s_stopRequested = true;

  EXPECT_EQ(runManually("rrr"), "\ntype r or q\ngood bye\n");
}

}  // namespace
}  // namespace component_tests
