// A big section's memory is needed once, and given back when the section is written.
#include <gtest/gtest.h>

#include <cstdint>
#include <iostream>
#include <string_view>

#include "orv/Process.h"
#include "tests/program/limits/simulated_run.h"
#include "tests/support/process_memory.h"

namespace limits {
namespace {

using testing_support::peakResidentMemory;
using testing_support::resetPeak;
using testing_support::residentMemory;

constexpr std::string_view kManyFileHandles = R"(
[[file]]
name = "file{n}"
count = 100
handle = [{ client = "a client whose name needs memory", count = 1000 }]
)";

constexpr std::string_view kManyClientHandles = R"(
[[client]]
id = "anna{n}"
count = 100
handle = [{ file = "a file whose name needs memory", count = 1000 }]
)";

class Memory : public ::testing::TestWithParam<std::string_view> {};

// The C library may keep what was freed, to hand it out again: it is asked to let go of it before
// the comparison with the beginning.
TEST_P(Memory, IsNeededOnceAndGivenBack) {
  constexpr long kNoiseKb = 1024;
  constexpr long kSectionKb = 9'000;  // below what 100 000 handles take
  SimulatedRun run(GetParam(), false);
  orv::returnFreeMemory();
  resetPeak();
  const long before = residentMemory();
  run.processor().processMonitorRequests(false);
  const long firstPeak = peakResidentMemory();
  const std::uint64_t liveBefore = counts().allocations - counts().releases;
  resetPeak();

  run.processor().processMonitorRequests(false);

  const long secondPeak = peakResidentMemory();
  const long kept = residentMemory();
  EXPECT_GT(firstPeak, before + kSectionKb);
  EXPECT_LE(secondPeak, firstPeak + kNoiseKb);
  EXPECT_EQ(counts().allocations - counts().releases, liveBefore);
  orv::returnFreeMemory();
  const long after = residentMemory();
  EXPECT_LE(after, before + kNoiseKb);
  std::cout << "KiB before " << before << ", peaks " << firstPeak << " and " << secondPeak
            << ", kept by the C library " << kept - after << ", after " << after << "\n";
}

INSTANTIATE_TEST_SUITE_P(All, Memory, ::testing::Values(kManyFileHandles, kManyClientHandles),
                         [](const auto& scenario) {
                           return scenario.index == 0 ? "Files" : "Sessions";
                         });

}  // namespace
}  // namespace limits
