#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "tests/tal/interface.h"

namespace tal::test {
namespace {

constexpr int kThreads = 64;
constexpr int kRefreshes = 3;

// All that a connection of its own answers in some refreshes.
std::string everythingOf(const Target& target) {
  std::string answers;
  const std::int32_t handle = connected(target);
  for (int refresh = 0; refresh < kRefreshes; ++refresh) {
    TalUsage usage{};
    EXPECT_EQ(TalGetZorbUsageEx2(handle, &usage), 0);
    TalCommStat communication{};
    EXPECT_EQ(TalGetZorbCommStatEx(handle, &communication), 0);
    answers += bytesOf(usage);
    answers += bytesOf(communication);
    answers += bytesOf(listFiles(handle)) + bytesOf(listClients(handle));
    answers += bytesOf(listSqlConnections(handle));
  }
  EXPECT_EQ(TalDisconnect(handle), 0);
  return answers;
}

TEST(Threads, GetTheAnswersThatOneThreadGets) {
  const Started started;
  const std::string expected = everythingOf({"sim:demo", "", ""});
  std::atomic<int> agreeing = 0;

  std::vector<std::jthread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      if (everythingOf({"sim:demo", "", ""}) == expected) ++agreeing;
      std::int32_t refused = 0;
      EXPECT_EQ(connect({"nothing:", "", ""}, refused), code(Status::kUnknownScheme));
    });
  }
  threads.clear();

  EXPECT_EQ(agreeing, kThreads);
}

}  // namespace
}  // namespace tal::test
