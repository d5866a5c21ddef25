#include "tests/support/guarded_server.h"

#include <gmock/gmock.h>
#include <signal.h>

#include <stdexcept>

namespace testing_support {
namespace {

using std::chrono::steady_clock;

// A server that writes to its log and then does what the shell command says.
GuardedServer::Planner planOf(const std::string& life) {
  return [life](const std::filesystem::path& folder, std::uint16_t port) {
    return ServerPlan{
        .user = "nobody",
        .prepare = "echo prepared",
        .command = {"/bin/sh",       "-c",
                    "echo on port " + std::to_string(port) + "; touch " + (folder / "up").string() +
                        "; " + life},
        .stopSignal = SIGKILL,
        .answers = [folder] { return std::filesystem::exists(folder / "up");              }
    };
  };
}

std::string logOf(std::uint16_t port) { return "prepared\non port " + std::to_string(port) + "\n"; }

TEST(GuardedServer, RunsOnAPortOfItsOwnUntilTheEnd) {
  std::filesystem::path folder;
  {
    const GuardedServer server(planOf("exec sleep 60"));
    const GuardedServer other(planOf("exec sleep 60"));
    folder = server.folder();

    server.requireRunning();
    EXPECT_NE(server.port(), other.port());
    EXPECT_EQ(server.log(), logOf(server.port()));
  }
  EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST(GuardedServer, ThatEndsInsteadOfAnsweringIsNoticedAtOnce) {
  const auto begin = steady_clock::now();
  const auto silent = [](const std::filesystem::path& folder, std::uint16_t port) {
    ServerPlan plan = planOf("echo cannot bind; exit 1")(folder, port);
    plan.answers = [] { return false; };
    return plan;
  };

  try {
    const GuardedServer server(silent);
    FAIL() << "started";
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), testing::EndsWith("cannot bind\n"));
  }

  EXPECT_LT(steady_clock::now() - begin, kDeadline / 2);
}

TEST(GuardedServer, ThatWasKilledIsNoLongerRunningAndCanRestart) {
  GuardedServer server(planOf("exec sleep 60"));
  const pid_t first = server.process();

  server.stop();
  EXPECT_THROW(server.requireRunning(), std::runtime_error);
  server.restart();

  EXPECT_NE(server.process(), first);
  server.requireRunning();
}

TEST(ReservedPort, IsNobodyElses) {
  const ReservedPort first;
  const ReservedPort second;
  const SilentListener any;

  EXPECT_NE(first.number(), second.number());
  EXPECT_NE(any.port(), first.number());
}

TEST(ReservedPort, IsNotOneOnWhichSomebodyListens) {
  std::uint16_t next = 0;
  {
    const ReservedPort free;
    next = free.number();
  }
  const SilentListener taken("127.0.0.1", next);

  EXPECT_NE(ReservedPort().number(), next);
}

}  // namespace
}  // namespace testing_support
