// A monitor runs for months: nothing may grow from refresh to refresh.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>

#include "tests/program/limits/simulated_run.h"
#include "tests/support/process_memory.h"

namespace limits {
namespace {

constexpr std::string_view kConstantEngine = R"(
[usage]
users = { current = 3, peak = 5, maximum = 20 }
[[communication.protocol]]
code = "tcp/ip"
[[file]]
name = "file {n}"
count = 2
handle = [{ client = "a client whose name needs memory", count = 2 }]
[[client]]
id = "anna{n}"
count = 2
handle = [{ file = "a file whose name needs memory", count = 2 }]
[[sql_connection]]
client_host = "a client host that needs memory"
count = 2
)";

// scripts/longrun asks for more.
int numberOfRefreshes() {
  constexpr int kRefreshes = 5000;
  const char* const wanted = std::getenv("ZELK_LONG_RUN");
  return wanted != nullptr ? std::stoi(wanted) : kRefreshes;
}

struct State {
  std::uint64_t liveAllocations;
  std::int64_t snapshots;
  std::ptrdiff_t descriptors;
  long residentKb;
};

State presentState() {
  using std::filesystem::directory_iterator;
  State state{};
  state.liveAllocations = counts().allocations - counts().releases;
  state.snapshots = counts().snapshots;
  state.descriptors = std::distance(directory_iterator("/proc/self/fd"), directory_iterator());
  state.residentKb = testing_support::residentMemory();
  return state;
}

class LongRun : public ::testing::TestWithParam<bool> {};

TEST_P(LongRun, GrowsNoMore) {
  constexpr int kWarmUp = 100;
  constexpr long kNoiseKb = 256;
  const bool json = GetParam();
  const int refreshes = numberOfRefreshes();
  SimulatedRun run(kConstantEngine, json);
  for (int i = 0; i < kWarmUp; ++i) run.processor().processMonitorRequests(json);
  const State early = presentState();

  for (int i = kWarmUp; i < refreshes; ++i) run.processor().processMonitorRequests(json);

  const State late = presentState();
  EXPECT_EQ(late.liveAllocations, early.liveAllocations);
  EXPECT_EQ(late.snapshots, 0);
  EXPECT_EQ(late.descriptors, early.descriptors);
  EXPECT_LE(late.residentKb, early.residentKb + kNoiseKb);
  std::cout << refreshes << " refreshes: resident memory from " << early.residentKb << " to "
            << late.residentKb << " KiB\n";
}

INSTANTIATE_TEST_SUITE_P(All, LongRun, ::testing::Bool(),
                         [](const auto& json) { return json.param ? "Json" : "Text"; });

}  // namespace
}  // namespace limits
