// Every allocation of a report fails once, and each is the first of a memory that has run out for
// good: the run ends with the code and the line about missing memory, whatever it was doing.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tests/program/limits/program_runs.h"

namespace limits {
namespace {

using testing_support::Ending;

constexpr const char* kFatal =
    "Fatal error 0x8007000E: the program cannot go on. Behind 0x8007 stands the error number of the "
    "operating system in hexadecimal; the manual page zelk(1) explains the common ones.";
constexpr const char* kOutsideReport = "zelk: out of memory";
constexpr const char* kInEngine =
    "7112: The engine library ran out of memory. Free memory or raise the limit, then run zelk "
    "again.";

class Allocation : public ::testing::TestWithParam<Form> {
 protected:
  // The ending and the line belong together. A run without a line needed the memory only to be
  // faster, as std::stable_sort does, and must have lost nothing.
  [[nodiscard]] bool isDocumented(const Report& report) const {
    if (report.ending == Ending::exit(0)) {
      return report.error.empty() && report.output == complete_.output &&
             report.log == complete_.log;
    }
    if (report.error == errorLine(GetParam(), kInEngine)) return report.ending == Ending::exit(1);
    return report.ending == Ending::exit(14) &&
           (isSaidOutsideReport(report) || report.error == errorLine(GetParam(), kFatal));
  }

  // Before the command line is read, the form is not known.
  [[nodiscard]] static bool isSaidOutsideReport(const Report& report) {
    return report.error == std::string(kOutsideReport) + "\n" ||
           report.error == std::string(kFatal) + "\n" ||
           report.error == errorLine(GetParam(), kOutsideReport);
  }

  // In JSON an engine's failure closes the document.
  [[nodiscard]] bool hasWholeLines(const Report& report) const {
    std::string output = report.output;
    const bool isClosed = report.ending == Ending::exit(1) && GetParam().json;
    if (isClosed && output.ends_with("}\n")) output.erase(output.size() - 2);
    return areFirstLinesOf(output, complete_.output) && areFirstLinesOf(report.log, complete_.log);
  }

  void expectEndsWell(const Report& report, const std::string& fault) const {
    EXPECT_TRUE(isDocumented(report)) << fault << ": " << report.ending << "\n" << report.error;
    EXPECT_TRUE(hasWholeLines(report)) << fault << "\n" << report.output << "log:\n" << report.log;
    EXPECT_EQ(report.snapshots, 0) << fault;
    EXPECT_EQ(report.connections, 0) << fault;
    EXPECT_EQ(report.starts, 0) << fault;
  }

  ProgramRuns program_{GetParam()};
  const Report complete_ = program_.run("none", 0);
};

TEST_P(Allocation, FailsOnceWithoutHarm) {
  ASSERT_EQ(complete_.ending, Ending::exit(0)) << complete_.error;
  ASSERT_GT(complete_.allocations, 500U);
  std::uint64_t survived = 0;

  for (std::uint64_t number = 1; number <= complete_.allocations; ++number) {
    const Report report = program_.run("allocation", number);
    if (report.ending == Ending::exit(0)) ++survived;
    expectEndsWell(report, "allocation " + std::to_string(number));
  }

  EXPECT_LT(survived, complete_.allocations / 50);
}

TEST_P(Allocation, FailsForGoodWithoutHarm) {
  constexpr std::uint64_t kStep = 7;  // what one run fails at, its neighbours fail at too
  for (std::uint64_t number = 1; number <= complete_.allocations; number += kStep) {
    const Report report = program_.run("allocations", number);

    EXPECT_TRUE(isSaidOutsideReport(report)) << report.error;
    expectEndsWell(report, "allocations from " + std::to_string(number));
  }
}

INSTANTIATE_TEST_SUITE_P(All, Allocation, ::testing::Values(kTextToBoth, kJsonToBoth), nameOf);

}  // namespace
}  // namespace limits
