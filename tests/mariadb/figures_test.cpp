// Figures of a server with all instruments, compared with what the server itself answers.
#include <unistd.h>

#include <algorithm>

#include "tests/mariadb/server_test.h"
#include "tests/support/wait_until.h"

namespace mariadb_testing {
namespace {

using testing_support::waitUntil;

class FiguresTest : public InstrumentedServerTest {
 protected:
  std::uint32_t status(const std::string& name) {
    return static_cast<std::uint32_t>(std::stoul(admin_.value(
        "SELECT variable_value FROM information_schema.global_status WHERE variable_name = '" +
        name + "'")));
  }

  std::int32_t variable(const std::string& name) {
    return std::stoi(admin_.value("SELECT @@" + name));
  }

  tal::Client client(std::uint32_t connection) {
    for (tal::Client& client : engine_->clients()) {
      if (client.connectionNumber == connection) return std::move(client);
    }
    ADD_FAILURE() << "no client " << connection;
    return {};
  }

  // Rows of the list of SQL connections that belong to the user.
  std::vector<tal::SqlConnection> connectionsOf(const std::string& user) {
    std::vector<tal::SqlConnection> result = engine_->sqlConnections();
    std::erase_if(result, [&](const tal::SqlConnection& row) { return row.userName != user; });
    return result;
  }
};

TEST_F(FiguresTest, VersionIsTheServersOwn) {
  const tal::Version version = engine_->version();

  const std::string text = std::to_string(version.major) + "." + std::to_string(version.minor) +
                           "." + std::to_string(version.build);
  EXPECT_EQ(text, admin_.value("SELECT SUBSTRING_INDEX(VERSION(), '-', 1)"));
  EXPECT_EQ(engine_->information().engineType, 0);
}

TEST_F(FiguresTest, UsageIsTheServersOwn) {
  const tal::Usage usage = engine_->usage();

  EXPECT_EQ(usage.sessions.current, 2U);
  EXPECT_EQ(usage.sessions.current, status("THREADS_CONNECTED"));
  EXPECT_EQ(usage.sessions.peak, status("MAX_USED_CONNECTIONS"));
  EXPECT_EQ(usage.sessions.maximum, variable("max_connections"));
  EXPECT_EQ(usage.users.current, usage.sessions.current);
  EXPECT_EQ(usage.clients.current, usage.sessions.current);
  EXPECT_EQ(usage.files.maximum, variable("open_files_limit"));
  EXPECT_GE(usage.files.current, status("INNODB_NUM_OPEN_FILES"));
  EXPECT_EQ(usage.handles.maximum, variable("table_open_cache"));
  EXPECT_EQ(usage.workerThreads.current, status("THREADS_CONNECTED") + status("THREADS_CACHED"));
  EXPECT_GT(usage.dataMb.current, 0U);
  EXPECT_LE(usage.upTimeSeconds, status("UPTIME"));
}

TEST_F(FiguresTest, PeaksOutliveWhatTheyCounted) {
  admin_.executeAll({"CREATE TABLE app.t (id INT PRIMARY KEY)", "INSERT INTO app.t VALUES (1)"});
  Session writer = session();
  writer.executeAll({"BEGIN", "DELETE FROM t"});
  const auto transactions = [&] {
    const tal::Gauge gauge = engine_->usage().transactions;
    return std::to_string(gauge.current) + " of " + std::to_string(gauge.peak);
  };

  expectInTheEnd(transactions, "1 of 1");
  writer.execute("ROLLBACK");

  expectInTheEnd(transactions, "0 of 1");
}

TEST_F(FiguresTest, PreparedTransactionWithoutASessionIsCountedAlone) {
  admin_.execute("CREATE TABLE app.t (id INT PRIMARY KEY)");
  {
    Session gone = session();
    gone.executeAll(
        {"XA START 'x'", "INSERT INTO t VALUES (1), (2)", "XA END 'x'", "XA PREPARE 'x'"});
  }

  expectInTheEnd([&] { return std::to_string(engine_->usage().transactions.current); }, "1");
  for (const tal::Client& row : engine_->clients()) {
    EXPECT_TRUE(row.handles.empty()) << row.id;
    EXPECT_EQ(row.transactionState, tal::transaction_state::kNone) << row.id;
  }
  admin_.execute("XA ROLLBACK 'x'");
}

TEST_F(FiguresTest, CommunicationCountsRequestsAndNetworkSessions) {
  Session other = session();
  const tal::Communication before = engine_->communication();
  const std::uint32_t questions = status("QUESTIONS");
  other.execute("DO 0");

  const tal::Communication after = engine_->communication();

  EXPECT_GE(after.requests, before.requests + 3);
  EXPECT_GT(after.requests, questions);
  EXPECT_EQ(after.remoteSessions.current, 2U);
  EXPECT_EQ(after.remoteSessions.maximum, variable("max_connections"));
  EXPECT_EQ(after.threads.current, 3U);
  EXPECT_EQ(after.recoveries, 0U);
  ASSERT_EQ(after.protocols.size(), 1U);
  EXPECT_EQ(after.protocols[0].code, tal::kTcpIpProtocol);
  EXPECT_EQ(after.protocols[0].currentSessions, 2U);
  EXPECT_GT(after.protocols[0].requests, before.protocols[0].requests);
}

TEST_F(FiguresTest, TimeoutsCountConnectionsThatWereCutOff) {
  Session victim = session();
  const std::uint32_t before = engine_->communication().timeouts;

  admin_.execute("KILL " + std::to_string(victim.id()));

  expectInTheEnd([&] { return std::to_string(engine_->communication().timeouts); },
                 std::to_string(before + 1));
}

TEST_F(FiguresTest, FilesHavePagesAndSizes) {
  admin_.executeAll({"CREATE TABLE app.i (id INT PRIMARY KEY) ENGINE=InnoDB",
                     "CREATE TABLE app.z (id INT PRIMARY KEY, t TEXT) ENGINE=InnoDB"
                     " ROW_FORMAT=COMPRESSED KEY_BLOCK_SIZE=4",
                     "CREATE TABLE app.m (id INT PRIMARY KEY) ENGINE=MyISAM",
                     "CREATE TABLE app.a (id INT PRIMARY KEY) ENGINE=Aria",
                     "SELECT * FROM app.i, app.z, app.m, app.a"});
  std::string files;
  for (const tal::OpenFile& file : engine_->openFiles()) {
    const std::filesystem::path path(file.name);
    if (path.parent_path() != server_.dataFolder() / "app") continue;
    files += path.filename().string() + " " + std::to_string(file.pageSize) + " " +
             std::to_string(file.sizeKb) + " " + std::to_string(file.readOnly) + "\n";
  }

  const auto sizeKb = [&](const std::string& name) {
    return std::to_string(std::filesystem::file_size(server_.dataFolder() / "app" / name) / 1024);
  };
  EXPECT_NE(files.find("i.ibd 16384 " + sizeKb("i.ibd") + " 78\n"), files.npos) << files;
  EXPECT_NE(files.find("z.ibd 4096 " + sizeKb("z.ibd") + " 78\n"), files.npos) << files;
  EXPECT_NE(files.find("m.MYI 1024 0 78\n"), files.npos) << files;
  EXPECT_NE(files.find("m.MYD 0 0 78\n"), files.npos) << files;
  EXPECT_NE(files.find("a.MAI 8192 0 78\n"), files.npos) << files;
  EXPECT_NE(files.find("a.MAD 8192 0 78\n"), files.npos) << files;
}

TEST_F(FiguresTest, ClientsCountTheRowsThatTheyTouched) {
  Session user = session();
  user.executeAll({"CREATE TABLE t (id INT PRIMARY KEY, v INT)", "FLUSH STATUS",
                   "INSERT INTO t VALUES (1, 0), (2, 0), (3, 0), (4, 0)",
                   "UPDATE t SET v = 1 WHERE id IN (1, 2)", "DELETE FROM t WHERE id = 3"});
  const std::uint32_t readBefore = client(user.id()).recordsRead;
  user.execute("SELECT * FROM t WHERE id = 4");

  const tal::Client row = client(user.id());

  EXPECT_EQ(row.id, std::to_string(user.id()));
  EXPECT_EQ(row.sessionName, "app@127.0.0.1 #" + row.id);
  EXPECT_EQ(row.site, tal::site::kRemote);
  EXPECT_EQ(row.networkAddress, "127.0.0.1");
  EXPECT_EQ(row.processId, static_cast<std::uint32_t>(::getpid()));
  EXPECT_EQ(row.recordsInserted, 4U);
  EXPECT_EQ(row.recordsUpdated, 2U);
  EXPECT_EQ(row.recordsDeleted, 1U);
  EXPECT_EQ(row.recordsRead, readBefore + 1);
  EXPECT_GT(row.diskAccesses, 0U);
  EXPECT_EQ(row.cacheAccesses, 0U);
  EXPECT_EQ(client(admin_.id()).networkAddress, "Socket");
  EXPECT_EQ(client(admin_.id()).site, tal::site::kLocal);
}

TEST_F(FiguresTest, ClientsAreSortedAndHoldTheMonitorItself) {
  Session user = session();
  std::vector<std::uint32_t> numbers;

  const std::vector<tal::Client> clients = engine_->clients();

  for (const tal::Client& row : clients) numbers.push_back(row.connectionNumber);
  EXPECT_EQ(clients.size(), 3U);
  EXPECT_TRUE(std::ranges::is_sorted(numbers));
  EXPECT_TRUE(std::ranges::any_of(
      clients, [](const auto& row) { return row.sessionName.starts_with("zelk@127.0.0.1"); }));
  for (const tal::Client& row : clients) EXPECT_TRUE(row.handles.empty()) << row.sessionName;
}

TEST_F(FiguresTest, LocksOfAClient) {
  admin_.executeAll(
      {"CREATE TABLE app.t (id INT PRIMARY KEY)", "INSERT INTO app.t SELECT seq FROM seq_1_to_20"});
  Session writer = session();
  Session locker = session();
  writer.executeAll({"BEGIN", "DELETE FROM t WHERE id <= 5"});
  locker.execute("CREATE TABLE other (id INT)");
  locker.execute("LOCK TABLES other WRITE");
  const std::string count =
      "SELECT trx_rows_locked FROM information_schema.innodb_trx"
      " WHERE trx_mysql_thread_id = " +
      std::to_string(writer.id());
  const auto locks = [&] {
    const tal::Client row = client(writer.id());
    const bool counted = row.locksUsed >= 5 && std::to_string(row.locksUsed) == admin_.value(count);
    return std::string(counted ? "as counted " : "other ") + std::to_string(row.transactionState);
  };

  expectInTheEnd(locks, "as counted 1019");
  EXPECT_EQ(client(locker.id()).locksUsed, 0U);
  EXPECT_EQ(client(locker.id()).transactionState, tal::transaction_state::kExclusive);
}

TEST_F(FiguresTest, SqlConnectionsTellWhatTheyDo) {
  Session busy = session();
  busy.start("DO SLEEP(1000)");
  waitForState(busy, "User sleep");

  const std::vector<tal::SqlConnection> users = connectionsOf("app");
  const std::vector<tal::SqlConnection> monitors = connectionsOf("zelk");
  const std::vector<tal::SqlConnection> administrators = connectionsOf("root");

  ASSERT_EQ(users.size(), 1U);
  EXPECT_EQ(users[0].clientHost, "127.0.0.1");
  EXPECT_EQ(users[0].networkAddress, "127.0.0.1");
  EXPECT_EQ(users[0].dataSource, "app");
  EXPECT_EQ(users[0].application, "libmariadb");
  EXPECT_EQ(users[0].status, tal::connection_status::kActive);
  ASSERT_EQ(monitors.size(), 1U);
  EXPECT_EQ(monitors[0].application, "zelk");
  EXPECT_EQ(monitors[0].dataSource, "");
  EXPECT_EQ(monitors[0].status, tal::connection_status::kActive);
  ASSERT_EQ(administrators.size(), 1U);
  EXPECT_EQ(administrators[0].clientHost, "localhost");
  EXPECT_EQ(administrators[0].networkAddress, "Socket");
  EXPECT_EQ(administrators[0].status, tal::connection_status::kIdle);
}

TEST_F(FiguresTest, SqlConnectionsTellTheirTime) {
  Session user = session();
  user.execute("DO SLEEP(1.2)");
  const auto start = std::chrono::steady_clock::now();
  user.start("DO SLEEP(1000)");

  ASSERT_TRUE(waitUntil([&] {
    const std::vector<tal::SqlConnection> rows = connectionsOf("app");
    return rows.size() == 1 && rows[0].periodMs >= 1000;
  }));
  const std::vector<tal::SqlConnection> rows = connectionsOf("app");

  const auto waited = std::chrono::steady_clock::now() - start;
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(waited).count();
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_LE(rows[0].periodMs, ms + 1);
  EXPECT_GE(rows[0].totalTime, 2U);
  EXPECT_LE(rows[0].totalTime, ms / 1000 + 3);
}

TEST_F(FiguresTest, KilledSessionDiesWhileItRollsBack) {
  Session user = session();
  user.executeAll({"CREATE TABLE t (id INT PRIMARY KEY, v CHAR(50), KEY (v)) ENGINE=InnoDB",
                   "BEGIN", "INSERT INTO t SELECT seq, MD5(seq) FROM seq_1_to_30000"});
  bool wasDying = false;

  admin_.execute("KILL " + std::to_string(user.id()));
  ASSERT_TRUE(waitUntil(
      [&] {
        const std::vector<tal::SqlConnection> rows = connectionsOf("app");
        wasDying =
            wasDying || (rows.size() == 1 && rows[0].status == tal::connection_status::kDying);
        return rows.empty();
      },
      std::chrono::milliseconds(1)));

  EXPECT_TRUE(wasDying);
}

}  // namespace
}  // namespace mariadb_testing
