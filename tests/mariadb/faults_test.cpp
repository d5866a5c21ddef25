// Servers that stop answering, in every way: no call may hang, and each has its status.
#include <signal.h>

#include <chrono>

#include "tal/mariadb/connection.h"
#include "tal/mariadb/location.h"
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

TEST_F(FaultsTest, EndedSessionIsOpenedAgain) {
  const tal::Usage before = engine_->usage();
  const std::string own = "SELECT id FROM information_schema.processlist WHERE user = 'zelk'";
  const std::string first = admin_.value(own);
  admin_.execute("KILL " + first);

  const tal::Usage after = engine_->usage();

  EXPECT_GE(after.files.peak, before.files.current);
  EXPECT_NE(admin_.value(own), first);
  EXPECT_EQ(admin_.column(own).size(), 1U);
}

// Each row is more than the server keeps back before it sends.
TEST_F(FaultsTest, SlowAnswersArriveWhole) {
  const tal::sql::Deadline deadline(tal::sql::kCallLimit);
  tal::mariadb::Connection connection(tal::mariadb::parseLocation(locationOf(server_)),
                                      {"zelk", "secret"}, {}, deadline);

  tal::mariadb::Result rows = connection.query(
      "SELECT REPEAT('x', 100000), SLEEP(0.05) UNION ALL SELECT REPEAT('y', 100000), SLEEP(0.05)",
      deadline);

  ASSERT_TRUE(rows.next());
  EXPECT_EQ(rows.cell(0), std::string(100000, 'x'));
  ASSERT_TRUE(rows.next());
  EXPECT_EQ(rows.cell(0), std::string(100000, 'y'));
  EXPECT_FALSE(rows.next());
}

TEST_F(FaultsTest, FrozenServer) {
  {
    const Frozen frozen(server_.process());

    EXPECT_EQ(boundedStatusOf([&] { engine_->clients(); }), Status::kNoAnswer);
    EXPECT_EQ(boundedStatusOf([&] { openEngine(server_); }), Status::kNoAnswer);
  }

  EXPECT_EQ(statusOf([&] { engine_->clients(); }), Status::kSuccess);
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

  EXPECT_EQ(boundedStatusOf([&] { engine->usage(); }), Status::kCannotReach);
  EXPECT_EQ(boundedStatusOf([&] { engine->sqlConnections(); }), Status::kCannotReach);
}

TEST_F(FaultsTest, ProgramsOwnHandlingOfABrokenPipeStays) {
  struct sigaction action {};

  openEngine(server_);

  ::sigaction(SIGPIPE, nullptr, &action);
  EXPECT_EQ(action.sa_handler, SIG_DFL);
}

}  // namespace
}  // namespace mariadb_testing
