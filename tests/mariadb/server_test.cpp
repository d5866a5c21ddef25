#include "tests/mariadb/server_test.h"

#include <stdexcept>

#include "tal/mariadb/mariadb.h"
#include "tal/status.h"
#include "tests/support/wait_until.h"

namespace mariadb_testing {
namespace {

using testing_support::waitUntil;
using Encryption = PrivateServer::Encryption;

std::unique_ptr<PrivateServer> preparedServer(Encryption encryption,
                                              const std::vector<std::string>& options) {
  auto server = std::make_unique<PrivateServer>(encryption, options);
  makeAccounts(*server);
  return server;
}

std::string code(std::uint8_t value) {
  return value > ' ' && value < 0x7f ? std::string(1, static_cast<char>(value))
                                     : std::to_string(value);
}

template <typename Handle>
std::string line(const std::string& name, const Handle& handle) {
  return name + " (" + std::to_string(handle.openMode) + ", " + code(handle.recordLockType) + ", " +
         std::to_string(handle.waitState) + ", " + std::to_string(handle.transactionState) + ")\n";
}

}  // namespace

PrivateServer& instrumentedServer() {
  static const auto server = preparedServer(
      Encryption::kNone,
      {"--performance-schema=ON", "--performance-schema-instrument=wait/lock/metadata/sql/mdl=ON"});
  return *server;
}

PrivateServer& plainServer() {
  static const auto server = preparedServer(Encryption::kOffered, {"--performance-schema=OFF"});
  return *server;
}

void makeAccounts(const PrivateServer& server) {
  Session::administrator(server).executeAll({
      "CREATE USER app@'127.0.0.1' IDENTIFIED BY 'secret'",
      "GRANT ALL ON *.* TO app@'127.0.0.1'",
      "CREATE USER zelk@'127.0.0.1' IDENTIFIED BY 'secret'",
      "GRANT PROCESS ON *.* TO zelk@'127.0.0.1'",
      "GRANT SELECT ON performance_schema.* TO zelk@'127.0.0.1'",
      "CREATE USER noproc@'127.0.0.1' IDENTIFIED BY 'secret'",
      "GRANT SELECT ON performance_schema.* TO noproc@'127.0.0.1'",
      "CREATE USER nops@'127.0.0.1' IDENTIFIED BY 'secret'",
      "GRANT PROCESS ON *.* TO nops@'127.0.0.1'",
  });
}

std::string locationOf(const PrivateServer& server) {
  return "127.0.0.1:" + std::to_string(server.port());
}

std::unique_ptr<tal::Engine> openEngine(const PrivateServer& server, const std::string& user) {
  return tal::mariadb::open(locationOf(server), {user, "secret"});
}

tal::Status statusOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const tal::Failure& failure) {
    return failure.status();
  }
  return tal::Status::kSuccess;
}

tal::Status statusOfLogin(const std::string& location, const std::string& user,
                          const std::string& password) {
  return statusOf([&] { tal::mariadb::open(location, {user, password}); });
}

ServerTest::ServerTest(PrivateServer& server)
    : server_(server), admin_(Session::administrator(server)) {}

void ServerTest::SetUp() {
  clear();
  engine_ = openEngine(server_);
}

void ServerTest::clear() {
  server_.requireRunning();
  const std::string others =
      "SELECT id FROM information_schema.processlist"
      " WHERE id <> CONNECTION_ID() AND command <> 'Daemon'";
  const bool alone = waitUntil([&] {
    const std::vector<std::string> ids = admin_.column(others);
    for (const std::string& id : ids) {
      try {
        admin_.execute("KILL " + id);
      } catch (const std::runtime_error&) {
        continue;  // it has gone by itself
      }
    }
    return ids.empty();
  });
  ASSERT_TRUE(alone);
  admin_.executeAll(
      {"DROP DATABASE IF EXISTS app", "CREATE DATABASE app CHARACTER SET utf8mb4", "USE app"});
}

Session ServerTest::session() {
  Session result(server_);
  result.execute("USE app");
  return result;
}

Session ServerTest::named(const std::string& name) {
  Session result = session();
  names_[result.id()] = name;
  return result;
}

void ServerTest::waitForState(const Session& session, const std::string& state) {
  const std::string present =
      "SELECT state FROM information_schema.processlist WHERE id = " + std::to_string(session.id());
  EXPECT_TRUE(waitUntil([&] { return admin_.value(present) == state; })) << admin_.value(present);
}

std::string ServerTest::nameOf(std::uint32_t connection) const {
  const auto name = names_.find(connection);
  return name == names_.end() ? "#" + std::to_string(connection) : name->second;
}

std::string ServerTest::fileHandles(const std::string& file) {
  std::string result;
  const std::string path = server_.dataFolder() / "app" / file;
  for (const tal::OpenFile& open : engine_->openFiles()) {
    if (open.name != path && open.name != file) continue;
    for (const tal::FileHandle& handle : open.handles) {
      result += line(nameOf(handle.clientIndex), handle);
    }
  }
  return result;
}

std::string ServerTest::clientHandles(const std::string& file) {
  std::string result;
  const std::string path = server_.dataFolder() / "app" / file;
  for (const tal::Client& client : engine_->clients()) {
    for (const tal::ClientHandle& handle : client.handles) {
      if (handle.fileName != path && handle.fileName != file) continue;
      result += line(nameOf(client.connectionNumber), handle);
    }
  }
  return result;
}

void ServerTest::expectHandles(const std::string& file, const std::string& handles) {
  expectInTheEnd([&] { return fileHandles(file); }, handles);
  expectInTheEnd([&] { return clientHandles(file); }, handles);
}

void ServerTest::expectInTheEnd(const std::function<std::string()>& answer,
                                const std::string& expected) {
  std::string last;
  EXPECT_TRUE(waitUntil([&] { return (last = answer()) == expected; }, kPictureAge));
  EXPECT_EQ(last, expected);
}

}  // namespace mariadb_testing
