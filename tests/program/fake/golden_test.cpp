// Runs the program in each situation of golden/ and compares everything that it leaves. Each folder
// that has no folder in it is a run. It has the files that it holds and those of the folders above
// it; where a name occurs twice, the nearest file counts. All are copied to where the program runs:
//
//   args              the command line, an argument on each line; if the folder is called "json",
//                     "-JSON" follows them
//   zelk.cfg          the configuration, if any
//   scenario.toml     what the embedded engine simulates (SERV=sim:scenario.toml)
//   faults.toml       what is added to the scenario
//   engine            what the fake engine does otherwise; with it, any SERV is the scenario
//   stdin             what is typed; without it standard input is at its end
//   locale            the locale for messages; without it there is none
//
// Its own folder also has what is expected:
//
//   stdout.expected   stderr.expected   without the file, nothing
//   exit.expected     without it, status 0
//   log.expected      the file monitor.log; without it there must be none
//
// Times are masked. Each run is repeated where a decimal comma is usual: nothing may change.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string>
#include <vector>

#include "tests/program/golden.h"
#include "tests/program/program_under_test.h"
#include "tests/support/masking.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text_comparison.h"

namespace program_tests {
namespace {

using testing_support::Command;
using testing_support::Ending;
using testing_support::Input;
using testing_support::maskTimes;
using testing_support::readFile;
using testing_support::Result;
using testing_support::run;
using testing_support::sameAsFile;
using testing_support::TemporaryFolder;

std::string testName(const ::testing::TestParamInfo<std::string>& info) {
  std::string name = info.param;
  std::ranges::replace(name, '-', '_');
  std::ranges::replace(name, '/', '_');
  return name;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

class Golden : public ::testing::TestWithParam<std::string> {
 protected:
  Golden() {
    run_.copyTo(work_);
    const std::filesystem::path configuration = work_ / "zelk.cfg";
    if (std::filesystem::exists(configuration)) {
      std::filesystem::permissions(configuration, std::filesystem::perms{0600});
    }
  }

  void check(Environment environment) {
    const Result result = run(command(std::move(environment)));

    EXPECT_TRUE(sameAsFile(run_.folder / "stdout.expected", maskTimes(result.output)));
    EXPECT_TRUE(sameAsFile(run_.folder / "stderr.expected", result.error));
    EXPECT_TRUE(sameAsFile(run_.folder / "exit.expected", textOf(result.ending)));
    const bool hasLog = std::filesystem::exists(work_ / "monitor.log");
    EXPECT_TRUE(sameAsFile(run_.folder / "log.expected",
                           hasLog ? maskTimes(readFile(work_ / "monitor.log")) : ""));
    EXPECT_EQ(hasLog, std::filesystem::exists(run_.folder / "log.expected"));
  }

  [[nodiscard]] bool hasLocale() const { return std::filesystem::exists(work_ / "locale"); }

  [[nodiscard]] Environment ownEnvironment() const {
    return hasLocale() ? environmentWithMessages(linesOf(readFile(work_ / "locale")).front())
                       : plainEnvironment();
  }

 private:
  Command command(Environment environment) {
    Command command{.program = builtProgram(), .arguments = linesOf(readFile(work_ / "args"))};
    if (run_.folder.filename() == "json") command.arguments.push_back("-JSON");
    command.environment = std::move(environment);
    command.folder = work_;
    if (std::filesystem::exists(work_ / "engine")) {
      const ProgramTree tree(folder_ / "tree");
      tree.replaceEngine(fakeEngine());
      command.program = tree.program();
      useFakeEngine(command);
    }
    if (std::filesystem::exists(work_ / "stdin")) {
      command.input = Input::text(readFile(work_ / "stdin"));
    }
    return command;
  }

  static std::string textOf(const Ending& ending) {
    if (ending == Ending::exit(0)) return "";
    return ending.status ? std::to_string(*ending.status) + "\n"
                         : "signal " + std::to_string(ending.signal.value_or(0)) + "\n";
  }

  const GoldenRun run_{GetParam()};
  const TemporaryFolder folder_;
  const std::filesystem::path work_ = folder_ / "work";
};

TEST_P(Golden, IsAsExpected) { check(ownEnvironment()); }

TEST_P(Golden, IsTheSameWithADecimalComma) {
  if (!hasLocale()) {
    check(decimalCommaEnvironment());
  }
}

INSTANTIATE_TEST_SUITE_P(Case, Golden, ::testing::ValuesIn(goldenRuns()), testName);

// The second run would prove nothing if the locale could not be loaded.
TEST(DecimalComma, IsInForce) {
  const Result result = run({
      .program = "/usr/bin/printf",
      .arguments = {"%.1f", "1,5"},
      .environment = decimalCommaEnvironment()
  });

  EXPECT_EQ(result.output, "1,5");
}

}  // namespace
}  // namespace program_tests
