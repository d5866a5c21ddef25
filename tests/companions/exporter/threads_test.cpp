// Many threads, each with a connection of its own, over the three engines at once.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "companions/exporter/collection.h"
#include "tests/mariadb/server_test.h"
#include "tests/postgresql/server_test.h"

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

int completeCollections(const companions::Login& login) {
  companions::Settings settings;
  settings.login = login;
  exporter::Collector collector(settings);
  int complete = 0;
  for (int i = 0; i < kCollections; ++i) {
    const exporter::Collection collection = collector.collect();
    complete += collection.failure.empty() && collection.isUp() ? 1 : 0;
    EXPECT_EQ(collection.failure, "") << login.server;
  }
  return complete;
}

TEST(Threads, CollectFromThreeEnginesAtOnce) {
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

}  // namespace
