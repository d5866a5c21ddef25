// Runs of minutes on servers that are restarted, frozen and killed. scripts/longrun asks for it.
#include <cstdlib>
#include <iostream>

#include "tests/mariadb/server_test.h"
#include "tests/postgresql/server_test.h"
#include "tests/program/servers/kill_server.h"
#include "tests/program/servers/timed_run.h"
#include "tests/support/frozen.h"

namespace servers_testing {
namespace {

using testing_support::Frozen;

constexpr std::chrono::seconds kRate{5};
// A fault is met by the next refresh; how long its calls may wait for the server.
constexpr std::chrono::seconds kBound = kRate + std::chrono::seconds(10);

// How many refreshes go well before each fault.
int numberOfRefreshes() {
  constexpr int kRefreshes = 12;
  const char* const wanted = std::getenv("ZELK_REFRESHES_PER_FAULT");
  return wanted != nullptr ? std::stoi(wanted) : kRefreshes;
}

void expectEnd(const char* fault, TimedRun& run, int status) {
  SCOPED_TRACE(fault);
  const auto begin = std::chrono::steady_clock::now();
  const auto passed = run.expectEnd(status) - begin;
  EXPECT_LT(passed, kBound);
  std::cout << fault << ": ended with " << status << " after "
            << std::chrono::duration<double>(passed).count() << " s\n";
}

TEST(LongRun, DISABLED_OnPostgresql) {
  testing_support::PrivateServer server;
  testing_support::prepare(server);
  const Target target{"postgresql://127.0.0.1:" + std::to_string(server.port()) + "/app"};
  const int refreshes = numberOfRefreshes();

  TimedRun restarted(target, kRate);
  EXPECT_TRUE(restarted.waitForRefreshes(refreshes));
  server.restart();
  expectEnd("PostgreSQL restarted", restarted, 7106);

  TimedRun frozen(target, kRate);
  EXPECT_TRUE(frozen.waitForRefreshes(refreshes));
  {
    const Frozen backend(std::stoi(testing_support::superuser(server, "app", "admin")
                                       .value("SELECT pid FROM pg_stat_activity"
                                              " WHERE usename = 'zelk'")));
    expectEnd("PostgreSQL frozen", frozen, 7107);
  }

  TimedRun killed(target, kRate);
  EXPECT_TRUE(killed.waitForRefreshes(refreshes));
  killServer(server);
  expectEnd("PostgreSQL killed", killed, 7106);
}

TEST(LongRun, DISABLED_OnMariadb) {
  mariadb_testing::PrivateServer server(mariadb_testing::PrivateServer::Encryption::kNone);
  mariadb_testing::makeAccounts(server);
  const Target target{"mariadb://" + mariadb_testing::locationOf(server)};
  const int refreshes = numberOfRefreshes();

  TimedRun restarted(target, kRate);
  EXPECT_TRUE(restarted.waitForRefreshes(refreshes));
  server.restart();
  expectEnd("MariaDB restarted", restarted, 7106);

  TimedRun frozen(target, kRate);
  EXPECT_TRUE(frozen.waitForRefreshes(refreshes));
  {
    const Frozen process(server.process());
    expectEnd("MariaDB frozen", frozen, 7107);
  }

  TimedRun killed(target, kRate);
  EXPECT_TRUE(killed.waitForRefreshes(refreshes));
  killServer(server);
  expectEnd("MariaDB killed", killed, 7106);
}

}  // namespace
}  // namespace servers_testing
