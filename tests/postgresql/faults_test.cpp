// Servers that go away, freeze or lock: each call ends in time, with the reason.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <future>
#include <string>

#include "tal/postgresql/connection.h"
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

// What account.sql has to answer.
const std::vector<std::string> kAccount = {"t", "pg_catalog", "5s",  "250ms",
                                           "0", "on",         "off", "read committed"};

const std::vector<std::string> kSilentAfterLogin = {
    protocol::welcome("15.20"), protocol::prepared(), protocol::rows({kAccount})};

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

  EXPECT_EQ(statusOf([&] { engine->sqlConnections(); }), Status::kAnswerTooLarge);
  EXPECT_EQ(statusOf([&] { engine->sqlConnections(); }), Status::kConnectionLost);
}

TEST_F(FaultsTest, AnswerThroughASocketHasTheSameLimit) {
  const std::string target = "host=" + server_.folder().string() +
                             " port=" + std::to_string(server_.port()) +
                             " user=postgres password=secret dbname=app";
  tal::postgresql::Connection connection{
      tal::postgresql::ConnectionHandle(PQconnectdb(target.c_str()))};
  const tal::postgresql::Statement large{
      "large", "SELECT repeat('x', 1000000) FROM generate_series(1, 200)", 1};

  const Status status =
      statusOf([&] { connection.run(large, tal::sql::Deadline(std::chrono::seconds(60))); });

  EXPECT_EQ(status, Status::kAnswerTooLarge);
  EXPECT_FALSE(connection.isOpen());
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
  const std::vector<std::string> row = {
      "1", "2", "app.public.t", "8192", "16384", "f", "t", "t", "8", "8", "f", "f",
      "f", "7", "me@app"};
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
  const std::vector<std::vector<std::string>> answers[] = {
      {std::vector<std::string>(12, "nonsense")               },
      {std::vector<std::string>(11, "1")                      },
      {std::vector<std::string>(13, "1")                      },
      {1000,                        std::vector<std::string>()}, // rows without columns take next to no bytes
  };
  for (const auto& answer : answers) {
    std::vector<std::string> script = kSilentAfterLogin;
    script.push_back(protocol::prepared());
    script.push_back(protocol::rows(answer));
    const FakeServer fake(script, FakeServer::AtEnd::kSilent);
    const auto engine =
        tal::postgresql::open("127.0.0.1:" + std::to_string(fake.port()), {"zelk", "secret"});

    EXPECT_EQ(statusOf([&] { engine->usage(); }), Status::kServerError) << answer.front().size();
  }
}

// As a pooler does that drops what was asked for at login.
TEST_F(FaultsTest, SessionWithoutItsSettingsIsRefused) {
  const std::vector<std::string> others = {"f",  "public, pg_catalog", "0", "0", "1min", "off",
                                           "on", "serializable"};
  for (std::size_t i = 0; i < kAccount.size(); ++i) {
    std::vector<std::string> account = kAccount;
    account[i] = others[i];
    const FakeServer fake(
        {protocol::welcome("15.20"), protocol::prepared(), protocol::rows({account})},
        FakeServer::AtEnd::kSilent);

    EXPECT_EQ(logIn(fake), i == 0 ? Status::kPrivilegeMissing : Status::kSettingsRefused) << i;
  }
}

// The client library derives a key as often as the server says, for minutes, and looks at no clock
// meanwhile. In a process of its own, because the thread that is left behind is busy.
TEST_F(FaultsTest, KeyDerivationWithoutEndIsLeftBehind) {
  const std::string start = "r=" + std::string(protocol::kNonce) + "x,s=c2FsdA==,i=2147483647";
  const FakeServer fake({protocol::authentication(10, std::string("SCRAM-SHA-256\0\0", 15)),
                         protocol::authentication(11, start)},
                        FakeServer::AtEnd::kSilent);

  EXPECT_EXIT(::exit(logIn(fake) == Status::kNoAnswer ? 3 : 1), testing::ExitedWithCode(3), "");
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
      zelk.value("SELECT name FROM (" + tal::postgresql::filesWithEstimatedSizesStatement().text +
                 ") x WHERE name = 'app.public.t'");

  EXPECT_EQ(name, "app.public.t");
}

}  // namespace
}  // namespace testing_support
