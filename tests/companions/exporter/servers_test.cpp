// The exporter's targets over real servers.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "companions/exporter/pages.h"
#include "tests/mariadb/server_test.h"
#include "tests/postgresql/server_test.h"
#include "tests/support/frozen.h"
#include "tests/support/wait_until.h"

namespace {

constexpr int kThreads = 64;
constexpr int kCollections = 5;

std::vector<companions::Login> logins() {
  const auto& postgresql = testing_support::sharedServer();
  const auto& mariadb = mariadb_testing::instrumentedServer();
  return {
      {"sim:demo",                                                             "",     ""      },
      {"postgresql://127.0.0.1:" + std::to_string(postgresql.port()) + "/app", "zelk",
       testing_support::PrivateServer::kPassword                                               },
      {"mariadb://" + mariadb_testing::locationOf(mariadb),                    "zelk", "secret"}
  };
}

companions::Settings settingsFor(const companions::Login& login) {
  companions::Settings settings;
  settings.login = login;
  return settings;
}

// A machine that is busy may let a call reach its time limit; that is asked again.
int completeCollections(const companions::Login& login) {
  exporter::Collector collector(settingsFor(login));
  int complete = 0;
  while (complete < kCollections) {
    const exporter::Collection collection = collector.collect();
    const bool isLate = collection.failure.find(": 7107: ") != std::string::npos;
    if (!collection.failure.empty() && !isLate) {
      ADD_FAILURE() << login.server << ": " << collection.failure;
      return complete;
    }
    if (!isLate) ++complete;
  }
  return complete;
}

// Each thread has a connection of its own.
TEST(ExporterServers, ServeManyThreadsAtOnce) {
  const companions::EngineLibrary library;
  const std::vector<companions::Login> servers = logins();
  std::atomic<int> complete = 0;

  std::vector<std::jthread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back(
        [&complete, &login = servers[static_cast<std::size_t>(i) % servers.size()]] {
          complete += completeCollections(login);
        });
  }
  threads.clear();

  EXPECT_EQ(complete, kThreads * kCollections);
}

// The names of the families that a scrape with this limit has; the first is that of zelk_up, behind
// its value.
std::vector<std::string> scrape(exporter::Target& target, std::chrono::milliseconds limit) {
  const exporter::Metrics metrics = scraped(target, exporter::Clock::now() + limit, 0);
  std::vector<std::string> names = {
      metrics.samples(exporter::Metric::kUp).front().value == 1 ? "up" : "down"};
  for (const exporter::Definition& family : exporter::kDefinitions) {
    if (!metrics.samples(family.metric).empty()) names.emplace_back(family.name);
  }
  return names;
}

TEST(ExporterServers, AreDownWhileFrozenAndComeBack) {
  const companions::EngineLibrary library;
  exporter::Target target("frozen", settingsFor(logins().back()), nullptr);
  const std::vector<std::string> before = scrape(target, std::chrono::minutes(1));

  std::vector<std::string> during;
  {
    const testing_support::Frozen server(mariadb_testing::instrumentedServer().process());
    during = scrape(target, std::chrono::milliseconds(200));
  }

  EXPECT_EQ(before.front(), "up");
  EXPECT_EQ(during, (std::vector<std::string>{"down", "zelk_up", "zelk_scrape_duration_seconds"}));
  EXPECT_TRUE(testing_support::waitUntil(
      [&] { return scrape(target, std::chrono::minutes(1)) == before; }));
}

}  // namespace
