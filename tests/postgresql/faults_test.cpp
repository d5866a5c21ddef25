// Servers that go away, freeze or lock: each call ends in time, with the reason.
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <string>

#include "tal/postgresql/postgresql.h"
#include "tal/postgresql/statements.h"
#include "tests/postgresql/fake_server.h"
#include "tests/postgresql/server_test.h"
#include "tests/support/frozen.h"

namespace testing_support {
namespace {

using tal::Status;

class FaultsTest : public ServerTest {
 protected:
  // The process that serves the monitor.
  pid_t monitorProcess() {
    return std::stoi(
        admin_.value("SELECT pid FROM pg_stat_activity WHERE application_name = 'zelk'"));
  }

  static Status logIn(const FakeServer& fake) {
    return statusOf([&] {
      tal::postgresql::open("127.0.0.1:" + std::to_string(fake.port()), {"zelk", "secret"});
    });
  }
};

const std::vector<std::string> kSilentAfterLogin = {protocol::welcome("15.20"),
                                                    protocol::prepared(), protocol::rows({{"t"}})};

TEST_F(FaultsTest, SilenceEndsInTime) {
  const FakeServer silent({}, FakeServer::AtEnd::kSilent);
  const FakeServer silentAtCheck({protocol::welcome("15.20")}, FakeServer::AtEnd::kSilent);
  const FakeServer silentLater(kSilentAfterLogin, FakeServer::AtEnd::kSilent);
  const auto later =
      tal::postgresql::open("127.0.0.1:" + std::to_string(silentLater.port()), {"zelk", "secret"});
  const auto frozenEngine = openEngine(server_);
  const Frozen frozen(monitorProcess());
  const auto start = std::chrono::steady_clock::now();

  auto atLogin = std::async(std::launch::async, [&] { return logIn(silent); });
  auto atCheck = std::async(std::launch::async, [&] { return logIn(silentAtCheck); });
  auto atCall =
      std::async(std::launch::async, [&] { return statusOf([&] { later->openFiles(); }); });
  auto atFrozen =
      std::async(std::launch::async, [&] { return statusOf([&] { frozenEngine->usage(); }); });

  EXPECT_EQ(atLogin.get(), Status::kNoAnswer);
  EXPECT_EQ(atCheck.get(), Status::kNoAnswer);
  EXPECT_EQ(atCall.get(), Status::kNoAnswer);
  EXPECT_EQ(atFrozen.get(), Status::kNoAnswer);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  EXPECT_EQ(statusOf([&] { frozenEngine->usage(); }), Status::kConnectionLost);
}

TEST_F(FaultsTest, TerminatedSessionIsLost) {
  const auto engine = openEngine(server_);
  engine->usage();

  admin_.run("SELECT pg_terminate_backend(" + std::to_string(monitorProcess()) + ", 5000)");

  EXPECT_EQ(statusOf([&] { engine->usage(); }), Status::kConnectionLost);
  EXPECT_EQ(statusOf([&] { engine->clients(); }), Status::kConnectionLost);
}

TEST_F(FaultsTest, StoppedServerIsLost) {
  PrivateServer server;
  prepare(server);
  const auto engine = openEngine(server);
  engine->openFiles();

  server.stop();

  EXPECT_EQ(statusOf([&] { engine->openFiles(); }), Status::kConnectionLost);
  EXPECT_EQ(statusOf([&] { openEngine(server); }), Status::kCannotReach);
}

TEST_F(FaultsTest, SessionEndedDuringAStatementIsLost) {
  std::vector<std::string> script = kSilentAfterLogin;
  script.push_back(protocol::error("57P01"));
  const FakeServer fake(script, FakeServer::AtEnd::kClose);
  const auto engine =
      tal::postgresql::open("127.0.0.1:" + std::to_string(fake.port()), {"zelk", "secret"});

  EXPECT_EQ(statusOf([&] { engine->openFiles(); }), Status::kConnectionLost);
}

TEST_F(FaultsTest, RefusedStatementLeavesTheSession) {
  std::vector<std::string> script = kSilentAfterLogin;
  script.push_back(protocol::error("42501") + protocol::ready());
  script.push_back(protocol::prepared());
  script.push_back(protocol::rows({
      {"host", "base", "app", "address", "user", "1", "2", "3"}
  }));
  const FakeServer fake(script, FakeServer::AtEnd::kSilent);
  const auto engine =
      tal::postgresql::open("127.0.0.1:" + std::to_string(fake.port()), {"zelk", "secret"});

  EXPECT_EQ(statusOf([&] { engine->usage(); }), Status::kPrivilegeMissing);
  EXPECT_EQ(engine->sqlConnections().size(), 1U);
}

TEST_F(FaultsTest, CopyingEndsTheSession) {
  for (const char type : {'H', 'G', 'W'}) {
    std::vector<std::string> script = kSilentAfterLogin;
    script.push_back(protocol::prepared());
    script.push_back(protocol::copy(type));
    const FakeServer fake(script, FakeServer::AtEnd::kSilent);
    const auto engine =
        tal::postgresql::open("127.0.0.1:" + std::to_string(fake.port()), {"zelk", "secret"});

    EXPECT_EQ(statusOf([&] { engine->usage(); }), Status::kServerError) << type;
    EXPECT_EQ(statusOf([&] { engine->usage(); }), Status::kConnectionLost) << type;
  }
}

TEST_F(FaultsTest, AnswerAboveTheLimitEndsTheSession) {
  const std::string row(1U << 20U, 'x');
  std::vector<std::string> script = kSilentAfterLogin;
  script.push_back(protocol::prepared());
  script.push_back(protocol::rows(std::vector<std::vector<std::string>>(70, {row})));
  const FakeServer fake(script, FakeServer::AtEnd::kSilent);
  const auto engine =
      tal::postgresql::open("127.0.0.1:" + std::to_string(fake.port()), {"zelk", "secret"});

  EXPECT_EQ(statusOf([&] { engine->sqlConnections(); }), Status::kServerError);
  EXPECT_EQ(statusOf([&] { engine->sqlConnections(); }), Status::kConnectionLost);
}

TEST_F(FaultsTest, StatementThatTheServerGivesUpLeavesTheSession) {
  std::vector<std::string> script = kSilentAfterLogin;
  script.push_back(protocol::prepared());
  script.push_back(protocol::error("55P03") + protocol::ready());
  script.push_back(protocol::prepared());
  script.push_back(protocol::error("57014") + protocol::ready());
  script.push_back(protocol::error("42501") + protocol::ready());
  const FakeServer fake(script, FakeServer::AtEnd::kSilent);
  const auto engine =
      tal::postgresql::open("127.0.0.1:" + std::to_string(fake.port()), {"zelk", "secret"});

  EXPECT_EQ(statusOf([&] { engine->openFiles(); }), Status::kCatalogLocked);
  EXPECT_EQ(statusOf([&] { engine->usage(); }), Status::kPrivilegeMissing);
}

TEST_F(FaultsTest, LockedRelationIsAskedAgainWithoutItsSize) {
  const std::vector<std::string> row = {"1",  "2",  "app.public.t", "8192", "78", "78",   "89",
                                        "16", "77", "252",          "78",   "0",  "1019", "me@app"};
  std::vector<std::string> script = kSilentAfterLogin;
  script.push_back(protocol::prepared());
  script.push_back(protocol::error("55P03") + protocol::ready());
  script.push_back(protocol::prepared());
  script.push_back(protocol::rows({row}));
  const FakeServer fake(script, FakeServer::AtEnd::kSilent);
  const auto engine =
      tal::postgresql::open("127.0.0.1:" + std::to_string(fake.port()), {"zelk", "secret"});

  const std::vector<tal::OpenFile> files = engine->openFiles();

  ASSERT_EQ(files.size(), 1U);
  EXPECT_EQ(files[0].name, "app.public.t");
}

TEST_F(FaultsTest, RowsThatMakeNoSenseAreAnError) {
  std::vector<std::string> script = kSilentAfterLogin;
  script.push_back(protocol::prepared());
  script.push_back(protocol::rows({{"nonsense"}}));
  const FakeServer fake(script, FakeServer::AtEnd::kSilent);
  const auto engine =
      tal::postgresql::open("127.0.0.1:" + std::to_string(fake.port()), {"zelk", "secret"});

  EXPECT_EQ(statusOf([&] { engine->usage(); }), Status::kServerError);
}

TEST_F(FaultsTest, LockedCatalogIsToldAndPasses) {
  const auto engine = openEngine(server_);
  engine->openFiles();
  Session first = session("first");
  first.run("BEGIN; LOCK TABLE pg_class IN ACCESS EXCLUSIVE MODE");

  const Status locked = statusOf([&] { engine->openFiles(); });
  first.run("ROLLBACK");

  EXPECT_EQ(locked, Status::kCatalogLocked);
  EXPECT_EQ(statusOf([&] { engine->openFiles(); }), Status::kSuccess);
}

TEST_F(FaultsTest, TablesLockedAwayHoldNobodyUp) {
  const auto engine = openEngine(server_);
  Session first = session("first");
  first.run("BEGIN; LOCK TABLE t IN ACCESS SHARE MODE");
  Session second = session("second");
  second.start("BEGIN; LOCK TABLE t IN ACCESS EXCLUSIVE MODE");
  waitUntilBlocked(second);
  const auto start = std::chrono::steady_clock::now();

  const Status status = statusOf([&] {
    engine->openFiles();
    engine->clients();
    engine->sqlConnections();
    engine->usage();
    engine->communication();
  });

  EXPECT_EQ(status, Status::kSuccess);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST_F(FaultsTest, EstimatedSizesAreAValidStatement) {
  Session zelk(server_.connectionString("zelk", PrivateServer::kPassword, "app"), "check");
  Session first = session("first");
  first.run("BEGIN; LOCK TABLE t IN ACCESS EXCLUSIVE MODE");

  const std::string name =
      zelk.value("SELECT name FROM (" + tal::postgresql::openFilesWithEstimatedSizes() +
                 ") x WHERE name = 'app.public.t'");

  EXPECT_EQ(name, "app.public.t");
}

}  // namespace
}  // namespace testing_support
