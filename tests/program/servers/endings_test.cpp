// Runs at a fixed rate that lose their server: each ends soon and says why, none hangs.
#include "tests/mariadb/server_test.h"
#include "tests/postgresql/server_test.h"
#include "tests/program/servers/kill_server.h"
#include "tests/program/servers/timed_run.h"
#include "tests/support/frozen.h"

namespace servers_testing {
namespace {

using testing_support::Frozen;

constexpr std::chrono::seconds kRate{5};
// The longest call takes 10 s; the rest is for a busy machine.
constexpr std::chrono::seconds kBound = kRate + std::chrono::seconds(15);

// The accounts of runs on the shared server, one for each, by which its process is found.
class PostgresqlMonitors {
 public:
  // Makes the account.
  Target target(const std::string& user) {
    admin_.run("DROP ROLE IF EXISTS " + user);
    admin_.run("CREATE ROLE " + user + " LOGIN PASSWORD 'secret'");
    admin_.run("GRANT pg_read_all_stats TO " + user);
    return {"postgresql://127.0.0.1:" + std::to_string(server_.port()) + "/app", user};
  }

  pid_t processOf(const std::string& user) {
    return std::stoi(
        admin_.value("SELECT pid FROM pg_stat_activity WHERE usename = '" + user + "'"));
  }

  void terminate(const std::string& user) {
    admin_.run("SELECT pg_terminate_backend(" + std::to_string(processOf(user)) + ")");
  }

 private:
  testing_support::PrivateServer& server_ = testing_support::sharedServer();
  testing_support::Session admin_ = testing_support::superuser(server_, "postgres", "admin");
};

// The same on the shared MariaDB server.
class MariadbMonitors {
 public:
  // Makes the account.
  Target target(const std::string& user) {
    const std::string account = accountOf(user);
    admin_.executeAll({"CREATE OR REPLACE USER " + account + " IDENTIFIED BY 'secret'",
                       "GRANT PROCESS ON *.* TO " + account,
                       "GRANT SELECT ON performance_schema.* TO " + account});
    return {"mariadb://" + mariadb_testing::locationOf(server_), user};
  }

  void end(const std::string& user) {
    admin_.execute("KILL " + admin_.value("SELECT id FROM information_schema.processlist"
                                          " WHERE user = '" +
                                          user + "'"));
  }

 private:
  static std::string accountOf(const std::string& user) { return user + "@'127.0.0.1'"; }

  mariadb_testing::PrivateServer& server_ = mariadb_testing::instrumentedServer();
  mariadb_testing::Session admin_ = mariadb_testing::Session::administrator(server_);
};

// One test for all, since each waits for a refresh and a time limit.
TEST(Endings, EveryLossEndsTheRun) {
  const testing_support::PrivateServer doomed;
  testing_support::prepare(doomed);
  const mariadb_testing::PrivateServer doomedToo(mariadb_testing::PrivateServer::Encryption::kNone);
  mariadb_testing::makeAccounts(doomedToo);
  PostgresqlMonitors postgresql;
  MariadbMonitors mariadb;
  TimedRun terminated(postgresql.target("terminated"), kRate);
  TimedRun served(postgresql.target("served"), kRate);
  TimedRun onDoomed({"postgresql://127.0.0.1:" + std::to_string(doomed.port()) + "/app"}, kRate);
  TimedRun ended(mariadb.target("ended"), kRate);
  TimedRun onFrozen({"mariadb://" + mariadb_testing::locationOf(mariadb_testing::plainServer())},
                    kRate);
  TimedRun onDoomedToo({"mariadb://" + mariadb_testing::locationOf(doomedToo)}, kRate);

  const auto lost = std::chrono::steady_clock::now();
  const Frozen server(mariadb_testing::plainServer().process());
  const Frozen backend(postgresql.processOf("served"));
  postgresql.terminate("terminated");
  mariadb.end("ended");
  killServer(doomedToo);
  killServer(doomed);

  const auto expectEnd = [lost](const char* name, TimedRun& run, int status) {
    SCOPED_TRACE(name);
    EXPECT_LT(run.expectEnd(status) - lost, kBound);
  };
  expectEnd("session terminated", terminated, 7106);
  expectEnd("server killed", onDoomed, 7106);
  expectEnd("process of the session frozen", served, 7107);
  expectEnd("MariaDB session killed", ended, 7106);
  expectEnd("MariaDB killed", onDoomedToo, 7106);
  expectEnd("MariaDB frozen", onFrozen, 7107);
}

}  // namespace
}  // namespace servers_testing
