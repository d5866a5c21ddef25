// Where the report goes to is not there, or goes away: the run ends, with what the exit code says.
#include <gtest/gtest.h>
#include <signal.h>

#include <ostream>
#include <string>
#include <vector>

#include "tests/program/program_under_test.h"
#include "tests/support/process.h"
#include "tests/support/terminal.h"

namespace limits {
namespace {

using program_tests::Workplace;
using testing_support::Command;
using testing_support::Ending;
using testing_support::Result;
using testing_support::run;
using testing_support::Terminal;

// The command with descriptors closed, as a shell does it: "<&- >&- 2>&-".
Command withClosed(const std::string& redirections, Command command) {
  std::vector<std::string> arguments = {"-c", "exec \"$0\" \"$@\" " + redirections,
                                        command.program.string()};
  arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
  command.program = "/bin/sh";
  command.arguments = arguments;
  return command;
}

struct Start {
  const char* name;
  const char* output;
  std::vector<std::string> arguments;
};

void PrintTo(const Start& start, std::ostream* out) { *out << start.name; }

class ClosedFromTheStart : public ::testing::TestWithParam<Start> {
 protected:
  ClosedFromTheStart() {
    place_.configure({
        {"OUTP", GetParam().output},
        {"NAME", "zelk.log"       },
        {"RESO", "YES"            }
    });
  }

  Workplace place_;
};

TEST_P(ClosedFromTheStart, StandardOutputIsTold) {
  const Result result = run(withClosed(">&-", place_.command(GetParam().arguments)));

  EXPECT_EQ(result.ending, Ending::exit(1));
  EXPECT_NE(result.error.find("standard output: Bad file descriptor"), std::string::npos)
      << result.error;
}

TEST_P(ClosedFromTheStart, AllStandardFilesLeaveTheExitCode) {
  const Result result = run(withClosed("<&- >&- 2>&-", place_.command(GetParam().arguments)));

  EXPECT_EQ(result.ending, Ending::exit(1));
  EXPECT_EQ(place_.maskedFile("zelk.log").find("error"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    All, ClosedFromTheStart,
    ::testing::Values(
        Start{
            "TextToConsole", "CONSOLE", {"-f", "zelk.cfg", "-runonce"}
},
        Start{"TextToBoth", "BOTH", {"-f", "zelk.cfg", "-runonce"}},
        Start{"JsonToConsole", "CONSOLE", {"-f", "zelk.cfg", "-runonce", "-JSON"}},
        Start{"JsonToBoth", "BOTH", {"-f", "zelk.cfg", "-runonce", "-JSON"}}),
    [](const auto& start) { return start.param.name; });

struct HangUp {
  const char* name;
  const char* refreshRate;
  const char* output;
  bool hangUpIsIgnored;
};

void PrintTo(const HangUp& hangUp, std::ostream* out) { *out << hangUp.name; }

class ClosedTerminal : public ::testing::TestWithParam<HangUp> {};

// The system sends SIGHUP, and from then on the terminal takes nothing: either may be seen first.
TEST_P(ClosedTerminal, EndsTheRun) {
  const Workplace place;
  place.configure({
      {"REFR", GetParam().refreshRate},
      {"OUTP", GetParam().output     },
      {"NAME", "zelk.log"            },
      {"RESO", "YES"                 }
  });
  Command command = place.command({"-f", "zelk.cfg"});
  if (GetParam().hangUpIsIgnored) command.ignoredSignals = {SIGHUP};
  Terminal terminal(command);
  terminal.waitFor("to stop.");

  terminal.hangUp();
  const Ending ending = terminal.wait();

  EXPECT_TRUE(ending == Ending::exit(0) || ending == Ending::exit(1)) << ending;
  EXPECT_TRUE(place.trace().ends_with("TalDisconnect(42)\nTalStop(null)\n")) << place.trace();
}

INSTANTIATE_TEST_SUITE_P(All, ClosedTerminal,
                         ::testing::Values(HangUp{"ByTheUsersKey", "0", "CONSOLE", false},
                                           HangUp{"ByTheUsersKeyWithLog", "0", "BOTH", false},
                                           HangUp{"ByTheClock", "5", "CONSOLE", false},
                                           HangUp{"ByTheClockWithLog", "5", "BOTH", false},
                                           HangUp{"ByTheUsersKeyUnderNohup", "0", "CONSOLE", true},
                                           HangUp{"ByTheClockUnderNohup", "5", "CONSOLE", true}),
                         [](const auto& hangUp) { return hangUp.param.name; });

}  // namespace
}  // namespace limits
