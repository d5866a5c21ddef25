#include "tal/postgresql/postgresql.h"

#include "tal/failure.h"
#include "tal/postgresql/clients.h"
#include "tal/postgresql/communication.h"
#include "tal/postgresql/connection.h"
#include "tal/postgresql/location.h"
#include "tal/postgresql/login.h"
#include "tal/postgresql/open_files.h"
#include "tal/postgresql/sql_connections.h"
#include "tal/postgresql/statements.h"
#include "tal/postgresql/usage.h"
#include "tal/sql/bounded_engine.h"
#include "tal/sql/deadline.h"

namespace tal::postgresql {
namespace {

constexpr int kOldestVersion = 140000;

class PostgresqlEngine : public Engine {
 public:
  explicit PostgresqlEngine(Connection connection) : connection_(std::move(connection)) {}

  Information information() override { return {}; }

  Version version() override {
    const int version = connection_.serverVersion();
    return {version / 10000, version % 10000, 0};
  }

  Usage usage() override {
    ResultRows rows = run({"zelk_usage", kUsage});
    return usage_.read(rows);
  }

  Communication communication() override {
    ResultRows rows = run({"zelk_communication", kCommunication});
    return communication_.read(rows);
  }

  std::vector<OpenFile> openFiles() override {
    ResultRows rows = runOpenFiles();
    return readOpenFiles(rows);
  }

  std::vector<Client> clients() override {
    ResultRows rows = run({"zelk_clients", kClients});
    return readClients(rows);
  }

  std::vector<SqlConnection> sqlConnections() override {
    ResultRows rows = run({"zelk_sql_connections", kSqlConnections});
    return readSqlConnections(rows);
  }

 private:
  ResultRows run(const Statement& statement) {
    return connection_.run(statement, sql::Deadline(sql::kCallLimit));
  }

  // A relation may be locked away between the reading of the locks and the asking for its size,
  // which then waits for lock_timeout. The second statement locks no relation of a user.
  ResultRows runOpenFiles() {
    const sql::Deadline deadline(sql::kCallLimit);
    try {
      return connection_.run({"zelk_open_files", kOpenFiles}, deadline);
    } catch (const Failure& failure) {
      if (failure.status() != Status::kCatalogLocked) throw;
    }
    return runEstimatedOpenFiles(deadline);
  }

  // Only locks on the catalog are left to wait for. When the server itself gave up waiting, it
  // answered, and the session is in order.
  ResultRows runEstimatedOpenFiles(const sql::Deadline& deadline) {
    try {
      return connection_.run({"zelk_open_files_estimated", openFilesWithEstimatedSizes().c_str()},
                             deadline);
    } catch (const Failure& failure) {
      const bool gaveUp = failure.status() == Status::kNoAnswer && connection_.isOpen();
      if (gaveUp) throw Failure(Status::kCatalogLocked);
      throw;
    }
  }

  Connection connection_;
  UsageReader usage_;
  CommunicationReader communication_;
};

// Without the privilege nothing fails, but the figures are wrong: other users' sessions are hidden.
void checkPrivileges(Connection& connection, const sql::Deadline& deadline) {
  ResultRows rows = connection.run({"zelk_privileges", kPrivileges}, deadline);
  if (!rows.next() || sql::text(rows, 0) != "t") throw Failure(Status::kPrivilegeMissing);
}

std::unique_ptr<Engine> openUnbounded(const Location& location, const Credentials& credentials,
                                      sql::SocketCutter& cutter) {
  const sql::Deadline deadline(sql::kCallLimit);
  Connection connection(login(location, credentials, cutter, deadline.within(sql::kConnectLimit)));
  if (connection.serverVersion() < kOldestVersion) throw Failure(Status::kVersionNotSupported);
  checkPrivileges(connection, deadline);
  return std::make_unique<PostgresqlEngine>(std::move(connection));
}

}  // namespace

std::unique_ptr<Engine> open(std::string_view location, const Credentials& credentials) {
  return sql::openBounded(
      [parsed = parseLocation(location), credentials](sql::SocketCutter& cutter) {
        return openUnbounded(parsed, credentials, cutter);
      });
}

}  // namespace tal::postgresql
