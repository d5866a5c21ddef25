#include "tests/postgresql/server_test.h"

#include <optional>

#include "tal/postgresql/postgresql.h"
#include "tal/status.h"
#include "tests/support/wait_until.h"

namespace testing_support {
namespace {

std::optional<PrivateServer>& holder() {
  static std::optional<PrivateServer> server;
  return server;
}

// Stops the server when the tests are over, before static objects go.
class StopServer : public testing::Environment {
 public:
  void TearDown() override { holder().reset(); }
};

}  // namespace

PrivateServer& sharedServer() {
  if (!holder()) {
    prepare(holder().emplace());
    testing::AddGlobalTestEnvironment(new StopServer);
  }
  return *holder();
}

Session superuser(const PrivateServer& server, const std::string& database,
                  const std::string& name) {
  return {server.connectionString("postgres", PrivateServer::kPassword, database), name};
}

void prepare(const PrivateServer& server) {
  Session admin = superuser(server, "postgres", "admin");
  admin.run("CREATE DATABASE app");
  admin.run(
      "CREATE ROLE zelk LOGIN PASSWORD 'secret';"
      "CREATE ROLE guest LOGIN PASSWORD 'secret';"
      "CREATE ROLE limited LOGIN PASSWORD 'secret' CONNECTION LIMIT 0;"
      "CREATE ROLE sleeper PASSWORD 'secret';"
      "GRANT pg_read_all_stats TO zelk;"
      "CREATE ROLE clear LOGIN PASSWORD 'secret' IN ROLE pg_read_all_stats;"
      "SET password_encryption = md5;"
      "CREATE ROLE hashed LOGIN PASSWORD 'secret' IN ROLE pg_read_all_stats");
  admin.run(
      "COPY (VALUES ('host all clear 127.0.0.1/32 password'), ('local all clear password'),"
      " ('host all hashed 127.0.0.1/32 md5'), ('local all hashed md5'))"
      " TO PROGRAM 'cat - pg_hba.conf >new && mv new pg_hba.conf'");
  admin.run("SELECT pg_reload_conf()");
}

std::unique_ptr<tal::Engine> openEngine(const PrivateServer& server) {
  return tal::postgresql::open("127.0.0.1:" + std::to_string(server.port()) + "/app",
                               {"zelk", PrivateServer::kPassword});
}

tal::Status statusOf(const std::function<void()>& action) {
  try {
    action();
    return tal::Status::kSuccess;
  } catch (const tal::Failure& failure) {
    return failure.status();
  }
}

void ServerTest::SetUp() {
  admin_.run(
      "DROP SCHEMA public CASCADE;"
      "CREATE SCHEMA public;"
      "CREATE TABLE t (id int PRIMARY KEY, note text);"
      "CREATE INDEX t_note ON t (note);"
      "INSERT INTO t SELECT n, 'note ' || n FROM generate_series(1, 100) n;"
      "ANALYZE t");
}

void ServerTest::TearDown() {
  server_.requireRunning();
  const bool alone = waitUntil([this] {
    return admin_.value(
               "SELECT count(pg_terminate_backend(pid)) FROM pg_stat_activity"
               " WHERE backend_type IN ('client backend', 'parallel worker',"
               " 'autovacuum worker') AND pid <> pg_backend_pid()") == "0";
  });
  ASSERT_TRUE(alone);
}

void ServerTest::end(const Session& session) {
  admin_.run("SELECT pg_terminate_backend(" + std::to_string(session.process()) + ", 5000)");
}

Session ServerTest::session(const std::string& name, const std::string& database) {
  return superuser(server_, database, name);
}

void ServerTest::waitUntilBlocked(const Session& session) {
  const bool blocked = waitUntil([&] {
    return admin_.value("SELECT wait_event_type FROM pg_stat_activity WHERE pid = " +
                        std::to_string(session.process())) == "Lock";
  });
  ASSERT_TRUE(blocked);
}

}  // namespace testing_support
