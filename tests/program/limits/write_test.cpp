// What write(2) and close(2) may do to a report: take less than they are given, be interrupted,
// find no space.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/program/limits/program_runs.h"
#include "tests/program/program_under_test.h"
#include "tests/support/text_comparison.h"

namespace limits {
namespace {

using testing_support::Ending;
using testing_support::sameText;

// Sizes of a disk on which a line finds no room, and on which half of it does.
std::vector<std::size_t> roomsWithin(std::string_view text) {
  std::vector<std::size_t> rooms;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find('\n', at);
    rooms.push_back(at);
    if (end > at + 1) rooms.push_back((at + end) / 2);
    at = end + 1;
  }
  return rooms;
}

class Writes : public ::testing::TestWithParam<Form> {
 protected:
  static void expectFailureOf(const std::string& target, const Report& report) {
    EXPECT_EQ(report.ending, Ending::exit(1));
    EXPECT_PRED_FORMAT2(sameText,
                        errorLine(GetParam(),
                                  "Output is incomplete because a write failed. Free space or "
                                  "choose another place and run again: " +
                                      target + ": No space left on device"),
                        report.error);
    EXPECT_EQ(report.snapshots, 0);
    EXPECT_EQ(report.connections, 0);
    EXPECT_EQ(report.starts, 0);
  }

  ProgramRuns program_{GetParam()};
  const Report complete_ = program_.run("none", 0);
};

TEST_P(Writes, LoseNothingWhenTheyAreDisturbed) {
  ASSERT_EQ(complete_.ending, Ending::exit(0)) << complete_.error;
  ASSERT_GT((complete_.output + complete_.log).size(), 2000U);

  for (std::uint64_t seed = 1; seed <= 30; ++seed) {
    const Report report = program_.run("disturbance", seed);

    EXPECT_EQ(report.ending, Ending::exit(0)) << "seed " << seed;
    EXPECT_PRED_FORMAT2(sameText, complete_.output, report.output) << "seed " << seed;
    EXPECT_PRED_FORMAT2(sameText, complete_.log, report.log) << "seed " << seed;
    EXPECT_EQ(report.error, "") << "seed " << seed;
  }
}

class WritesToConsole : public Writes {};

TEST_P(WritesToConsole, TellWhenThereIsNoSpace) {
  for (const std::size_t room : roomsWithin(complete_.output)) {
    const Report report = program_.run("console-room", room);

    SCOPED_TRACE("room for " + std::to_string(room));
    expectFailureOf("standard output", report);
    EXPECT_EQ(report.output, complete_.output.substr(0, room));
  }
}

class WritesToFile : public Writes {};

// In JSON, standard output gets the end of the document.
TEST_P(WritesToFile, TellWhenThereIsNoSpace) {
  const std::string end = GetParam().json ? "}\n" : "";
  for (const std::size_t room : roomsWithin(complete_.log)) {
    const Report report = program_.run("log-room", room);

    SCOPED_TRACE("room for " + std::to_string(room));
    expectFailureOf("zelk.log", report);
    EXPECT_EQ(report.log, complete_.log.substr(0, room));
    EXPECT_EQ(report.output, complete_.output + end);
  }
}

class Closing : public Writes {};

// As on a full network disk. The document is whole, so that nothing more may be printed.
TEST_P(Closing, TellsThatTheLogIsLost) {
  const Report report = program_.run("log-close", 0);

  expectFailureOf("zelk.log", report);
  EXPECT_PRED_FORMAT2(sameText, complete_.log, report.log);
  EXPECT_PRED_FORMAT2(sameText, complete_.output, report.output);
}

constexpr Form kTimedToFile = {"TimedToFile", false, "FILE", true};

// Standard input is at its end. The keyboard thread has the closing line, which is all that stands
// behind the banner.
class ClosingLine : public Writes {
 protected:
  void SetUp() override {
    ASSERT_EQ(complete_.ending, Ending::exit(0)) << complete_.error;
    ASSERT_TRUE(complete_.output.starts_with(banner_ + "Standard input ended")) << complete_.output;
  }

  const std::string banner_ = program_tests::kBanner;
};

TEST_P(ClosingLine, IsTheSameWhenItIsWrittenAgain) {
  const Report report = program_.run("console-write", 4);  // the banner has three lines

  EXPECT_EQ(report.ending, Ending::exit(0));
  EXPECT_PRED_FORMAT2(sameText, complete_.output, report.output);
  EXPECT_EQ(report.error, "");
}

TEST_P(ClosingLine, IsToldToBeLost) {
  const Report report = program_.run("console-room", banner_.size());

  expectFailureOf("standard output", report);
  EXPECT_EQ(report.output, banner_);
}

class WritesToBoth : public Writes {};

// One disk for both: each line goes to standard output, then to the log.
TEST_P(WritesToBoth, TellWhenThereIsNoSpace) {
  for (const std::size_t line : roomsWithin(complete_.log)) {
    const std::size_t room = complete_.output.size() - complete_.log.size() + 2 * line + 3;
    const Report report = program_.run("both-room", room);

    SCOPED_TRACE("room for " + std::to_string(room));
    const bool isLog = report.error.find("zelk.log") != std::string::npos;
    expectFailureOf(isLog ? "zelk.log" : "standard output", report);
    EXPECT_TRUE(complete_.output.starts_with(report.output)) << report.output;
    EXPECT_TRUE(complete_.log.starts_with(report.log)) << report.log;
    EXPECT_EQ(report.output.size() + report.log.size(), room);
  }
}

constexpr Form kTextToConsole = {"TextToConsole", false, "CONSOLE"};
constexpr Form kTextToFile = {"TextToFile", false, "FILE"};
constexpr Form kJsonToConsole = {"JsonToConsole", true, "CONSOLE"};
constexpr Form kJsonToFile = {"JsonToFile", true, "FILE"};

INSTANTIATE_TEST_SUITE_P(All, Writes,
                         ::testing::Values(kTextToConsole, kTextToFile, kTextToBoth, kJsonToConsole,
                                           kJsonToFile, kJsonToBoth),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(All, WritesToConsole, ::testing::Values(kTextToConsole, kJsonToConsole),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(All, WritesToFile, ::testing::Values(kTextToFile, kJsonToFile), nameOf);
INSTANTIATE_TEST_SUITE_P(All, Closing,
                         ::testing::Values(kTextToFile, kTextToBoth, kJsonToFile, kJsonToBoth),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(All, ClosingLine, ::testing::Values(kTimedToFile), nameOf);
INSTANTIATE_TEST_SUITE_P(All, WritesToBoth, ::testing::Values(kTextToBoth, kJsonToBoth), nameOf);

}  // namespace
}  // namespace limits
