// Figures, compared with the server's own answers to an administrator's questions.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "tal/postgresql/postgresql.h"
#include "tests/postgresql/server_test.h"
#include "tests/support/wait_until.h"

namespace testing_support {
namespace {

class FiguresTest : public ServerTest {
 protected:
  std::int64_t number(const std::string& query) { return std::stoll(admin_.value(query)); }

  tal::SqlConnection connectionOf(const std::string& application) {
    for (tal::SqlConnection& connection : engine_->sqlConnections()) {
      if (connection.application == application) return connection;
    }
    ADD_FAILURE() << application << " is not connected";
    return {};
  }

  tal::Client clientOf(const Session& session) {
    for (tal::Client& client : engine_->clients()) {
      if (client.id == std::to_string(session.process())) return client;
    }
    ADD_FAILURE() << session.name() << " is no client";
    return {};
  }

  std::unique_ptr<tal::Engine> engine_ = openEngine(server_);
};

TEST_F(FiguresTest, VersionIsTheServers) {
  const std::int64_t expected = number("SHOW server_version_num");

  const tal::Version version = engine_->version();

  EXPECT_EQ(version.major * 10000 + version.minor, expected);
  EXPECT_EQ(version.build, 0);
  EXPECT_EQ(engine_->information().engineType, 0);
}

TEST_F(FiguresTest, UsageAgreesWithDirectQueries) {
  Session first = session("first");
  first.run("BEGIN; SELECT * FROM t WHERE id = 1");

  const tal::Usage usage = engine_->usage();

  EXPECT_EQ(usage.users.current, 3U);  // administrator, user, monitor
  EXPECT_EQ(usage.users.maximum, number("SHOW max_connections"));
  EXPECT_EQ(usage.files.current, engine_->openFiles().size());
  EXPECT_EQ(usage.files.maximum, 0);
  EXPECT_EQ(usage.handles.current, 3U);
  EXPECT_EQ(usage.transactions.current, 1U);
  EXPECT_EQ(usage.clients.current, engine_->clients().size());
  EXPECT_EQ(usage.clients.maximum, number("SHOW max_connections"));
  EXPECT_EQ(usage.workerThreads.current, 1U);  // the logical replication launcher
  EXPECT_EQ(usage.workerThreads.maximum, number("SHOW max_worker_processes"));
  EXPECT_EQ(usage.locks.current, 4U);
  EXPECT_NEAR(
      usage.dataMb.current,
      static_cast<double>(number("SELECT sum(pg_database_size(oid)) / 1048576 FROM pg_database")),
      1.0);
  EXPECT_EQ(usage.sessions.current, 3U);
  EXPECT_NEAR(usage.upTimeSeconds,
              static_cast<double>(
                  number("SELECT extract(epoch FROM now() - pg_postmaster_start_time())::bigint")),
              2.0);
}

TEST_F(FiguresTest, PeaksStay) {
  {
    Session first = session("first");
    first.run("BEGIN; SELECT * FROM t WHERE id = 1");
    engine_->usage();
    engine_->communication();
  }
  ASSERT_TRUE(waitUntil([this] { return engine_->sqlConnections().size() == 2; }));

  const tal::Usage usage = engine_->usage();
  const tal::Communication communication = engine_->communication();

  EXPECT_EQ(usage.users.current, 2U);
  EXPECT_EQ(usage.users.peak, 3U);
  EXPECT_EQ(usage.handles.current, 0U);
  EXPECT_EQ(usage.handles.peak, 3U);
  EXPECT_EQ(communication.remoteSessions.current, 2U);
  EXPECT_EQ(communication.remoteSessions.peak, 3U);
}

TEST_F(FiguresTest, CommunicationAgreesWithDirectQueries) {
  const std::int64_t transactions =
      number("SELECT sum(xact_commit + xact_rollback) FROM pg_stat_database");

  const tal::Communication communication = engine_->communication();

  EXPECT_GE(communication.requests, transactions);
  EXPECT_LT(communication.requests, transactions + 1000);
  EXPECT_EQ(communication.remoteSessions.current, 2U);
  EXPECT_EQ(communication.remoteSessions.maximum, number("SHOW max_connections"));
  EXPECT_EQ(communication.threads.current, 2U);
  EXPECT_EQ(communication.threads.maximum, number("SELECT current_setting('max_connections')::int"
                                                  " + current_setting('max_wal_senders')::int"));
  EXPECT_EQ(communication.timeouts, number("SELECT sum(sessions_abandoned) FROM pg_stat_database"));
  ASSERT_EQ(communication.protocols.size(), 1U);
  EXPECT_EQ(communication.protocols[0].code, tal::kTcpIpProtocol);
  EXPECT_EQ(communication.protocols[0].currentSessions, 2U);
}

TEST_F(FiguresTest, FileFields) {
  Session first = session("first");
  first.run("CREATE MATERIALIZED VIEW summary AS SELECT * FROM t");
  first.run("BEGIN; SELECT * FROM summary");

  const std::vector<tal::OpenFile> files = engine_->openFiles();

  first.run("COMMIT; DROP MATERIALIZED VIEW summary");
  ASSERT_EQ(files.size(), 1U);
  EXPECT_EQ(files[0].name, "app.public.summary");
  EXPECT_EQ(files[0].pageSize, 8192U);
  EXPECT_EQ(files[0].readOnly, tal::flag::kYes);
  EXPECT_EQ(files[0].recordLocks, tal::flag::kNo);
  EXPECT_EQ(files[0].transactionLock, tal::flag::kNo);
  EXPECT_EQ(files[0].sizeKb, 8U);
  ASSERT_EQ(files[0].handles.size(), 1U);
  EXPECT_EQ(files[0].handles[0].clientName, "postgres@app");
}

TEST_F(FiguresTest, RemoteClientFields) {
  Session first = session("first");

  const tal::Client client = clientOf(first);

  EXPECT_EQ(client.site, tal::site::kRemote);
  EXPECT_EQ(client.networkAddress, "127.0.0.1");
  EXPECT_EQ(client.sessionName, "postgres@app #" + client.id);
  EXPECT_EQ(client.processId, static_cast<std::uint32_t>(first.process()));
  EXPECT_EQ(client.connectionNumber, tal::kUnknownConnectionNumber);
}

TEST_F(FiguresTest, LocalClientFields) {
  const Session first("host=" + server_.folder().string() +
                          " port=" + std::to_string(server_.port()) +
                          " user=postgres password=secret dbname=app",
                      "first");

  const tal::Client client = clientOf(first);
  const tal::SqlConnection connection = connectionOf("first");

  EXPECT_EQ(client.site, tal::site::kLocal);
  EXPECT_EQ(client.networkAddress, "[local]");
  EXPECT_EQ(connection.clientHost, "[local]");
  EXPECT_EQ(connection.networkAddress, "[local]");
}

TEST_F(FiguresTest, SqlConnectionFields) {
  Session first = session("first");
  first.run("SELECT pg_sleep(1.1)");
  first.start("SELECT pg_sleep(30)");
  ASSERT_TRUE(
      waitUntil([&] { return connectionOf("first").status == tal::connection_status::kActive; }));

  const tal::SqlConnection connection = connectionOf("first");

  EXPECT_EQ(connection.clientHost, "127.0.0.1");
  EXPECT_EQ(connection.dataSource, "app");
  EXPECT_EQ(connection.networkAddress, "127.0.0.1");
  EXPECT_EQ(connection.userName, "postgres");
  EXPECT_GE(connection.totalTime, 1U);
  EXPECT_LE(connection.totalTime, 60U);
  EXPECT_LT(connection.periodMs, connection.totalTime * 1000U + 1000U);
}

TEST_F(FiguresTest, ApplicationNameIsAscii) {
  Session first = session("first");

  first.run("SET application_name = 'caf\xc3\xa9'");

  EXPECT_EQ(connectionOf("caf??").userName, "postgres");
}

TEST_F(FiguresTest, MonitorIsAConnectionAndNoClient) {
  const tal::SqlConnection own = connectionOf("zelk");
  const std::vector<tal::Client> clients = engine_->clients();

  EXPECT_EQ(own.userName, "zelk");
  EXPECT_EQ(own.dataSource, "app");
  EXPECT_TRUE(std::ranges::none_of(
      clients, [](const tal::Client& client) { return client.sessionName.starts_with("zelk@"); }));
  EXPECT_TRUE(engine_->openFiles().empty());
}

TEST_F(FiguresTest, MonitorLeavesNoTransactionOpen) {
  EXPECT_EQ(admin_.value("SELECT count(*) FROM pg_stat_activity WHERE application_name = 'zelk'"),
            "1");
  EXPECT_EQ(statusOf([this] { engine_->sqlConnections(); }), tal::Status::kSuccess);
  EXPECT_EQ(admin_.value("SELECT state FROM pg_stat_activity WHERE application_name = 'zelk'"),
            "idle");
  EXPECT_EQ(admin_.value("SELECT count(*) FROM pg_locks l JOIN pg_stat_activity a USING (pid)"
                         " WHERE a.application_name = 'zelk'"),
            "0");
}

// How often the server's log says that the monitor executed something.
std::size_t countStatements(const std::string& log) {
  std::size_t count = 0;
  std::istringstream lines(log);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("zelk|LOG:  execute") || line.starts_with("zelk|LOG:  statement")) ++count;
  }
  return count;
}

TEST_F(FiguresTest, EachCallIsOneStatement) {
  admin_.run("ALTER ROLE zelk SET log_statement = 'all'");
  const std::size_t before = countStatements(server_.log());
  engine_ = openEngine(server_);
  const std::size_t opened = countStatements(server_.log());

  engine_->openFiles();
  engine_->clients();
  engine_->sqlConnections();
  engine_->usage();
  engine_->communication();
  engine_->version();
  engine_->information();

  admin_.run("ALTER ROLE zelk RESET log_statement");
  EXPECT_EQ(opened - before, 1U);
  EXPECT_EQ(countStatements(server_.log()) - opened, 5U);
}

}  // namespace
}  // namespace testing_support
