// A server as servers are by default: the same statements answer, and what is lost is not invented.
#include <netinet/in.h>
#include <sys/socket.h>

#include "tests/mariadb/server_test.h"
#include "tests/support/file_descriptor.h"
#include "tests/support/wait_until.h"

namespace mariadb_testing {
namespace {

class WithoutPerformanceSchemaTest : public PlainServerTest {
 protected:
  void SetUp() override {
    PlainServerTest::SetUp();
    admin_.executeAll({"CREATE TABLE app.t (id INT PRIMARY KEY, v INT) ENGINE=InnoDB",
                       "INSERT INTO app.t SELECT seq, 0 FROM seq_1_to_10",
                       "CREATE TABLE app.u (id INT PRIMARY KEY) ENGINE=InnoDB",
                       "CREATE TABLE app.m (id INT PRIMARY KEY) ENGINE=MyISAM",
                       "SELECT * FROM app.t, app.u, app.m"});
  }
};

TEST_F(WithoutPerformanceSchemaTest, FilesOfInnodbAreListed) {
  Session holder = session();
  Session waiter = session();
  holder.executeAll({"BEGIN", "UPDATE t SET v = 1 WHERE id = 1"});
  waiter.start("UPDATE t SET v = 2 WHERE id = 1");
  const auto files = [&] {
    std::string result;
    for (const tal::OpenFile& file : engine_->openFiles()) {
      const std::filesystem::path path(file.name);
      if (path.parent_path() != server_.dataFolder() / "app") continue;
      result += path.filename().string() + " " + std::to_string(file.pageSize) + " " +
                std::to_string(file.recordLocks) + " " + std::to_string(file.transactionLock) +
                " " + std::to_string(file.readOnly) + " " + std::to_string(file.handles.size()) +
                "\n";
    }
    return result;
  };

  expectInTheEnd(files,
                 "t.ibd 16384 89 89 78 2\n"
                 "u.ibd 16384 78 78 78 0\n");
}

TEST_F(WithoutPerformanceSchemaTest, ClientsKeepTheirTransactions) {
  Session writer = session();
  writer.executeAll({"BEGIN", "UPDATE t SET v = 1 WHERE id <= 3"});
  const auto clients = [&] {
    std::string result;
    for (const tal::Client& row : engine_->clients()) {
      if (!row.sessionName.starts_with("app@")) continue;
      result +=
          row.networkAddress + " " + std::to_string(row.site) + " " +
          std::to_string(row.locksUsed > 0) + " " + std::to_string(row.transactionState) + " " +
          std::to_string(row.processId + row.recordsUpdated + row.recordsRead + row.diskAccesses);
    }
    return result;
  };

  expectInTheEnd(clients, "127.0.0.1 0 1 1019 0");
}

TEST_F(WithoutPerformanceSchemaTest, SqlConnectionsLackProgramAndAge) {
  std::string connections;
  for (const tal::SqlConnection& row : engine_->sqlConnections()) {
    connections += row.userName + "|" + row.clientHost + "|" + row.networkAddress + "|" +
                   row.application + "|" + std::to_string(row.totalTime) + "\n";
  }

  EXPECT_EQ(connections,
            "root|localhost|localhost||0\n"
            "zelk|127.0.0.1|127.0.0.1||0\n");
}

TEST_F(WithoutPerformanceSchemaTest, FiguresAreComplete) {
  const tal::Usage usage = engine_->usage();
  const tal::Communication communication = engine_->communication();

  EXPECT_EQ(usage.sessions.current, 2U);
  EXPECT_GT(usage.files.current, 0U);
  EXPECT_GT(usage.dataMb.current, 0U);
  EXPECT_GT(communication.requests, 0U);
  EXPECT_EQ(communication.remoteSessions.current, 1U);
  ASSERT_EQ(communication.protocols.size(), 1U);
  EXPECT_EQ(communication.protocols[0].requests, 0U);
}

// The names by which the server's own threads and half-open logins go are no way to hide.
TEST_F(WithoutPerformanceSchemaTest, NobodyHidesBehindANameOfTheServers) {
  const std::vector<std::string> names = {"system user", "unauthenticated user"};
  std::vector<Session> sessions;
  for (const std::string& name : names) {
    admin_.execute("CREATE OR REPLACE USER '" + name + "'@'127.0.0.1' IDENTIFIED BY 'secret'");
    sessions.emplace_back(server_, name);
  }
  const testing_support::FileDescriptor halfOpen(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(server_.port());
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ASSERT_EQ(::connect(halfOpen.number(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_TRUE(testing_support::waitUntil([this] {
    return admin_.value(
               "SELECT COUNT(*) FROM information_schema.processlist"
               " WHERE command = 'Connect'") == "1";
  }));

  std::vector<std::string> clients;
  for (const tal::Client& row : engine_->clients()) clients.push_back(row.sessionName);
  std::vector<std::string> users;
  for (const tal::SqlConnection& row : engine_->sqlConnections()) users.push_back(row.userName);

  ASSERT_EQ(clients.size(), 4U);
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string id = std::to_string(sessions[i].id());
    EXPECT_EQ(clients[i + 2], names[i] + "@127.0.0.1 #" + id);
  }
  EXPECT_EQ(users, (std::vector<std::string>{"root", "zelk", names[0], names[1]}));
  for (const std::string& name : names) admin_.execute("DROP USER '" + name + "'@'127.0.0.1'");
}

}  // namespace
}  // namespace mariadb_testing
