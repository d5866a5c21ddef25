// Servers that stop answering, in every way: no call may hang, and each has its status.
#include <signal.h>

#include <chrono>
#include <optional>

#include "tal/mariadb/connection.h"
#include "tal/mariadb/login.h"
#include "tal/mariadb/mariadb.h"
#include "tests/mariadb/server_test.h"
#include "tests/support/frozen.h"
#include "tests/support/loopback.h"
#include "tests/support/wait_until.h"

namespace mariadb_testing {
namespace {

using tal::Status;
using testing_support::Frozen;
using testing_support::SilentListener;
using testing_support::waitUntil;

using FaultsTest = PlainServerTest;

// The longest call, and room for a busy machine.
constexpr std::chrono::seconds kBound{15};

// The status of an action that must end within the bound.
Status boundedStatusOf(const std::function<void()>& action) {
  const auto start = std::chrono::steady_clock::now();
  const Status status = statusOf(action);
  EXPECT_LT(std::chrono::steady_clock::now() - start, kBound);
  return status;
}

TEST_F(FaultsTest, LostSessionStaysLost) {
  const std::string own = "SELECT id FROM information_schema.processlist WHERE user = 'zelk'";
  admin_.execute("KILL " + admin_.value(own));

  EXPECT_EQ(statusOf([&] { engine_->usage(); }), Status::kConnectionLost);
  EXPECT_EQ(statusOf([&] { engine_->clients(); }), Status::kConnectionLost);
  EXPECT_TRUE(waitUntil([&] { return admin_.column(own).empty(); }));
}

// A session of zelk's own, and what it makes of statements that zelk does not make.
class StatementsTest : public FaultsTest {
 protected:
  void SetUp() override {
    FaultsTest::SetUp();
    connection_.emplace(tal::mariadb::login(tal::mariadb::parseLocation(locationOf(server_)),
                                            {"app", "secret"}, {}, cutter_,
                                            tal::sql::Deadline(tal::sql::kConnectLimit)));
    connection_->run("USE app");
  }

  std::size_t rowsOf(const char* statement) {
    tal::mariadb::Result rows = connection_->run(statement);
    std::size_t count = 0;
    while (rows.next()) ++count;
    return count;
  }

  tal::sql::SocketCutter cutter_;
  std::optional<tal::mariadb::Connection> connection_;
};

// Each row is more than the server keeps back before it sends.
TEST_F(StatementsTest, SlowAnswersArriveWhole) {
  tal::mariadb::Result rows = connection_->run(
      "SELECT REPEAT('x', 50000), SLEEP(0.05) UNION ALL SELECT REPEAT('y', 50000), SLEEP(0.05)");

  ASSERT_TRUE(rows.next());
  EXPECT_EQ(rows.cell(0), std::string(50000, 'x'));
  ASSERT_TRUE(rows.next());
  EXPECT_EQ(rows.cell(0), std::string(50000, 'y'));
  EXPECT_FALSE(rows.next());
}

TEST_F(StatementsTest, AnswersHaveALimit) {
  EXPECT_EQ(rowsOf("SELECT 1 FROM seq_1_to_250000"), 250'000U);
  EXPECT_EQ(statusOf([&] { rowsOf("SELECT 1 FROM seq_1_to_250001"); }), Status::kAnswerTooLarge);
  EXPECT_EQ(statusOf([&] { rowsOf("SELECT 1"); }), Status::kConnectionLost);
}

TEST_F(StatementsTest, BytesHaveALimit) {
  EXPECT_EQ(statusOf([&] { rowsOf("SELECT REPEAT('x', 50000) FROM seq_1_to_2000"); }),
            Status::kAnswerTooLarge);
}

TEST_F(StatementsTest, NoRowIsTakenThatIsLongerThanAnyOfOurs) {
  EXPECT_EQ(statusOf([&] { rowsOf("SELECT REPEAT('x', 1000000)"); }), Status::kConnectionLost);
}

TEST_F(StatementsTest, ServerEndsWhatTakesTooLong) {
  EXPECT_EQ(statusOf([&] { rowsOf("SELECT SLEEP(6) FROM seq_1_to_2"); }), Status::kNoAnswer);
}

TEST_F(FaultsTest, FrozenServer) {
  {
    const Frozen frozen(server_.process());

    EXPECT_EQ(boundedStatusOf([&] { engine_->clients(); }), Status::kNoAnswer);
    EXPECT_EQ(boundedStatusOf([&] { openEngine(server_); }), Status::kNoAnswer);
  }

  EXPECT_EQ(statusOf([&] { engine_->clients(); }), Status::kConnectionLost);
  EXPECT_EQ(statusOf([&] { openEngine(server_); }), Status::kSuccess);
}

TEST_F(FaultsTest, SilentListener) {
  const SilentListener silent;
  const std::string location = "127.0.0.1:" + std::to_string(silent.port());

  EXPECT_EQ(boundedStatusOf([&] {
              tal::mariadb::open(location, {"zelk", "secret"});
            }),
            Status::kNoAnswer);
}

TEST_F(FaultsTest, KilledServer) {
  const PrivateServer server(PrivateServer::Encryption::kNone);
  makeAccounts(server);
  const auto engine = openEngine(server);
  engine->usage();

  ::kill(server.process(), SIGKILL);
  ASSERT_TRUE(waitUntil([&] { return !Session::canLogIn(server.socketPath()); }));

  EXPECT_EQ(boundedStatusOf([&] { engine->usage(); }), Status::kConnectionLost);
  EXPECT_EQ(boundedStatusOf([&] { engine->sqlConnections(); }), Status::kConnectionLost);
}

TEST_F(FaultsTest, ProgramsOwnHandlingOfABrokenPipeStays) {
  struct sigaction action {};

  openEngine(server_);

  ::sigaction(SIGPIPE, nullptr, &action);
  EXPECT_EQ(action.sa_handler, SIG_DFL);
}

}  // namespace
}  // namespace mariadb_testing
