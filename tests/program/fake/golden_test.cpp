// Runs the program in each situation of golden/ and compares everything that it leaves. A situation
// is a folder with
//
//   args              the command line, an argument on each line
//   zelk.cfg          the configuration, if any; like all other files it is copied to where the
//                     program runs
//   scenario.toml     what the embedded engine simulates (SERV=sim:scenario.toml), or
//   engine            what the fake engine answers (any SERV); it stands for the product's
//                     engine library where the answers are such as that one never gives
//   stdin             what is typed; without it standard input is at its end
//   locale            the locale for messages; without it there is none
//
// and what is expected:
//
//   stdout.expected   stderr.expected   without the file, nothing
//   exit.expected     without it, status 0
//   log.expected      the file monitor.log; without it there must be none
//
// These stand in the folder itself when the program runs once, with its arguments as they are.
// Where the folder holds json/ it runs twice: text/ has what is expected of these arguments, json/
// what is expected when "-JSON" follows them.
//
// Times are masked. Each run is repeated where a decimal comma is usual: nothing may change.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string>
#include <vector>

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

// One run: the name of a situation, or that with "/text" or "/json".
std::vector<std::string> runNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(GOLDEN_FOLDER)) {
    const std::string situation = entry.path().filename();
    if (std::filesystem::exists(entry.path() / "json")) {
      names.insert(names.end(), {situation + "/text", situation + "/json"});
    } else {
      names.push_back(situation);
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

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
    const auto options = std::filesystem::copy_options::recursive;
    std::filesystem::copy(source_, work_, options);
    const std::filesystem::path configuration = work_ / "zelk.cfg";
    if (std::filesystem::is_regular_file(configuration)) {
      std::filesystem::permissions(configuration, std::filesystem::perms{0600});
    }
  }

  void check(Environment environment) {
    const Result result = run(command(std::move(environment)));

    EXPECT_TRUE(sameAsFile(expected_ / "stdout.expected", maskTimes(result.output)));
    EXPECT_TRUE(sameAsFile(expected_ / "stderr.expected", result.error));
    EXPECT_TRUE(sameAsFile(expected_ / "exit.expected", textOf(result.ending)));
    const bool hasLog = std::filesystem::exists(work_ / "monitor.log");
    EXPECT_TRUE(sameAsFile(expected_ / "log.expected",
                           hasLog ? maskTimes(readFile(work_ / "monitor.log")) : ""));
    EXPECT_EQ(hasLog, std::filesystem::exists(expected_ / "log.expected"));
  }

  [[nodiscard]] bool hasLocale() const { return std::filesystem::exists(source_ / "locale"); }

  [[nodiscard]] Environment ownEnvironment() const {
    return hasLocale() ? environmentWithMessages(linesOf(readFile(source_ / "locale")).front())
                       : plainEnvironment();
  }

 private:
  Command command(Environment environment) {
    Command command{.program = builtProgram(), .arguments = linesOf(readFile(source_ / "args"))};
    if (expected_.filename() == "json") command.arguments.push_back("-JSON");
    if (std::filesystem::exists(source_ / "engine")) {
      const ProgramTree tree(folder_ / "tree");
      tree.replaceEngine(fakeEngine());
      command.program = tree.program();
      environment["FAKE_ENGINE"] = work_ / "engine";
    }
    command.environment = std::move(environment);
    command.folder = work_;
    if (std::filesystem::exists(source_ / "stdin")) {
      command.input = Input::text(readFile(source_ / "stdin"));
    }
    return command;
  }

  static std::string textOf(const Ending& ending) {
    if (ending == Ending::exit(0)) return "";
    return ending.status ? std::to_string(*ending.status) + "\n"
                         : "signal " + std::to_string(ending.signal.value_or(0)) + "\n";
  }

  static std::string situation() { return GetParam().substr(0, GetParam().find('/')); }

  const std::filesystem::path source_ = std::filesystem::path(GOLDEN_FOLDER) / situation();
  const std::filesystem::path expected_ = std::filesystem::path(GOLDEN_FOLDER) / GetParam();
  const TemporaryFolder folder_;
  const std::filesystem::path work_ = folder_ / "work";
};

TEST_P(Golden, IsAsExpected) { check(ownEnvironment()); }

TEST_P(Golden, IsTheSameWithADecimalComma) {
  if (!hasLocale()) {
    check(decimalCommaEnvironment());
  }
}

INSTANTIATE_TEST_SUITE_P(Case, Golden, ::testing::ValuesIn(runNames()), testName);

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
