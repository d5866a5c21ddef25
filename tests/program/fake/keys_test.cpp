// What keys do, in the manual and in the timed loop, on a terminal and over a pipe.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/program/fake/expected_text.h"
#include "tests/program/program_under_test.h"
#include "tests/support/masking.h"
#include "tests/support/process.h"
#include "tests/support/terminal.h"
#include "tests/support/text_comparison.h"

namespace program_tests {
namespace {

using testing_support::Command;
using testing_support::Ending;
using testing_support::Input;
using testing_support::maskTimes;
using testing_support::Process;
using testing_support::Result;
using testing_support::run;
using testing_support::sameText;
using testing_support::Terminal;

const std::string kManualPrompt = "\nType r to refresh, q to stop.";
const std::string kTimedPrompt = "\nType q to stop.  \n";
const std::string kExit = "zelk is stopping.\n";
const std::string kInputError =
    "Standard input ended or is not text: zelk is stopping. To run without a keyboard, use -runonce, "
    "or set a refresh rate and a refresh limit.\n";

std::string report(const Shown& shown) { return kBanner + runHeader(shown) + kIdleResources; }

class Keys : public ::testing::Test {
 protected:
  // A rate that no test outlives: what happens after the first refresh comes from the keys.
  void configureTimed() {
    place_.configure({
        {"REFR", "3600"},
        {"RESO", "YES" }
    });
  }
  void configureManual() {
    place_.configure({
        {"RESO", "YES"}
    });
  }

  [[nodiscard]] Command command(Input input) const {
    Command command = place_.command(kLoop);
    command.input = std::move(input);
    return command;
  }

  Workplace place_;
  const std::string timedReport_ = report({.rate = "3600", .resources = true});
  const std::string manualReport_ = report({.resources = true});
};

TEST_F(Keys, RefreshAndStopTheManualLoopOverAPipe) {
  configureManual();
  Process process(command(Input::pipe()));
  process.waitForOutput(kManualPrompt + "\n");

  process.write("x\nr\n");
  EXPECT_TRUE(process.waitForOutput(kManualPrompt, 2));
  process.write("R");
  EXPECT_TRUE(process.waitForOutput(kManualPrompt, 3));
  process.write("q");

  EXPECT_EQ(process.wait(), Ending::exit(0));
  EXPECT_PRED_FORMAT2(sameText,
                      manualReport_ + kManualPrompt + "\n" + kIdleResources + kManualPrompt +
                          kIdleResources + kManualPrompt + kExit,
                      maskTimes(process.output()));
}

TEST_F(Keys, RefreshAndStopTheManualLoopOnATerminal) {
  configureManual();
  Terminal terminal(place_.command(kLoop));
  terminal.waitFor(kManualPrompt + "\n");

  terminal.type("r\n");
  EXPECT_TRUE(
      terminal.waitFor("unlimited\n" + kManualPrompt + "\nr\n" + kIdleResources + kManualPrompt));
  terminal.type("q\n");

  EXPECT_EQ(terminal.wait(), Ending::exit(0));
  EXPECT_PRED_FORMAT2(
      sameText,
      manualReport_ + kManualPrompt + "\nr\n" + kIdleResources + kManualPrompt + "q\n" + kExit,
      maskTimes(terminal.screen()));
}

TEST_F(Keys, StopTheTimedLoopOnATerminal) {
  configureTimed();
  Terminal terminal(place_.command(kLoop));
  terminal.waitFor(kTimedPrompt);

  terminal.type("q\n");

  EXPECT_EQ(terminal.wait(), Ending::exit(0));
  EXPECT_PRED_FORMAT2(sameText, timedReport_ + kTimedPrompt + "q\n" + kExit,
                      maskTimes(terminal.screen()));
}

TEST_F(Keys, StopTheTimedLoopOverAPipe) {
  for (const std::string key : {"q", "Q", "xr\n\x7F\x01R Q"}) {
    configureTimed();
    Process process(command(Input::pipe()));
    process.waitForOutput(kTimedPrompt);

    process.write(key);

    EXPECT_EQ(process.wait(), Ending::exit(0));
    EXPECT_PRED_FORMAT2(sameText, timedReport_ + kTimedPrompt + kExit, maskTimes(process.output()));
  }
}

TEST_F(Keys, CountBadBytesInARowInTheTimedLoop) {
  configureTimed();
  Process process(command(Input::pipe()));
  process.waitForOutput(kTimedPrompt);

  process.write(std::string(25, '\0') + "x" + std::string(25, '\xFF') + "q");

  EXPECT_EQ(process.wait(), Ending::exit(0));
  EXPECT_PRED_FORMAT2(sameText, timedReport_ + kTimedPrompt + kExit, maskTimes(process.output()));
}

TEST_F(Keys, EndTheTimedLoopWith26BadBytesInARow) {
  configureTimed();
  Process process(command(Input::pipe()));
  process.waitForOutput(kTimedPrompt);

  process.write(std::string(13, '\0') + std::string(13, '\x80'));

  EXPECT_EQ(process.wait(), Ending::exit(0));
  EXPECT_PRED_FORMAT2(sameText, timedReport_ + kTimedPrompt + kInputError,
                      maskTimes(process.output()));
}

// Without a limit the timed loop needs a keyboard. The input thread may be quicker than the first
// refresh, so that the two texts may stand in either order.
class NoKeyboard : public Keys, public ::testing::WithParamInterface<Input> {};

// The keyboard may be found missing before the first report or after it.
TEST_P(NoKeyboard, EndsTheTimedLoop) {
  configureTimed();

  const Result result = run(command(GetParam()));

  EXPECT_EQ(result.ending, Ending::exit(0));
  EXPECT_EQ(result.error, "");
  EXPECT_NE(result.output.find(kInputError), std::string::npos) << result.output;
  EXPECT_EQ(result.output.find(kExit), std::string::npos) << result.output;
}

TEST_P(NoKeyboard, EndsTheManualLoop) {
  configureManual();

  const Result result = run(command(GetParam()));

  EXPECT_EQ(result.ending, Ending::exit(0));
  EXPECT_PRED_FORMAT2(sameText, manualReport_ + kManualPrompt + "\n" + kInputError,
                      maskTimes(result.output));
}

TEST_P(NoKeyboard, IsNeededByNoRunOnce) {
  configureTimed();
  Command once = command(GetParam());
  once.arguments.emplace_back("-runonce");

  const Result result = run(once);

  EXPECT_EQ(result.ending, Ending::exit(0));
  EXPECT_PRED_FORMAT2(sameText, timedReport_, maskTimes(result.output));
}

TEST_P(NoKeyboard, IsNeededByNoLimitedRun) {
  place_.configure({
      {"REFR", "3600"},
      {"LIMI", "1"   },
      {"OUTP", "FILE"}
  });

  const Result result = run(command(GetParam()));

  EXPECT_EQ(result.ending, Ending::exit(0));
  EXPECT_EQ(result.output, kBanner);
}

std::string inputName(const ::testing::TestParamInfo<Input>& info) {
  switch (info.param.kind) {
    case Input::Kind::kClosed:
      return "Closed";
    case Input::Kind::kFile:
      return "EndlessBinary";
    default:
      return "AtItsEnd";
  }
}

INSTANTIATE_TEST_SUITE_P(Input, NoKeyboard,
                         ::testing::Values(Input::closed(), Input::text(""),
                                           Input::file("/dev/zero")),
                         inputName);

// No address space has room for a thread with a stack of 64 TB.
TEST_F(Keys, AreReportedAsOutOfReachIfNoThreadCanBeMade) {
  if (kUnderThreadSanitizer) GTEST_SKIP() << "the sanitizer does not start under the limit";
  configureTimed();
  Command starved = command(Input::text(""));
  starved.arguments = {"-c", "ulimit -s 70368744177664; exec \"$0\" \"$@\"", starved.program, "-f",
                       "zelk.cfg"};
  starved.program = "/bin/sh";

  const Result result = run(starved);

  EXPECT_EQ(result.error,
            "Cannot start the keyboard thread (error 0x8007000B). Free memory or raise the limit "
            "on processes, or set a refresh limit.\n");
  EXPECT_EQ(result.ending, Ending::exit(1));
  EXPECT_TRUE(place_.trace().ends_with("TalDisconnect(42)\nTalStop(null)\n")) << place_.trace();
}

TEST_F(Keys, DoNotStopALimitedRun) {
  place_.configure({
      {"REFR", "5"  },
      {"LIMI", "2"  },
      {"RESO", "YES"}
  });

  const Result result = run(command(Input::text("q\n")));

  EXPECT_EQ(result.ending, Ending::exit(0));
  const std::string prompt = "\nStops by itself at the refresh limit.";
  EXPECT_PRED_FORMAT2(sameText,
                      report({.rate = "5", .limit = "2", .resources = true}) + prompt +
                          "  (1 of 2)\n" + kIdleResources + prompt + "  (2 of 2)\n",
                      maskTimes(result.output));
}

TEST_F(Keys, ArePromptedForInTheManualLoopAlsoWithoutConsoleOutput) {
  place_.configure({
      {"OUTP", "FILE"}
  });

  const Result result = run(command(Input::text("rq")));

  EXPECT_EQ(result.output, kBanner + kManualPrompt + "\n" + kManualPrompt + kExit);
}

TEST_F(Keys, AreNotPromptedForInTheTimedLoopWithoutConsoleOutput) {
  place_.configure({
      {"REFR", "3600"},
      {"OUTP", "FILE"}
  });

  const Result result = run(command(Input::text("q")));

  EXPECT_EQ(result.ending, Ending::exit(0));
  EXPECT_EQ(result.output, kBanner + kExit);
}

}  // namespace
}  // namespace program_tests
