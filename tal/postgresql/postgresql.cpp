#include "tal/postgresql/postgresql.h"

#include "tal/postgresql/connection.h"
#include "tal/postgresql/location.h"
#include "tal/postgresql/login.h"
#include "tal/postgresql/login_options.h"
#include "tal/postgresql/read_figures.h"
#include "tal/postgresql/read_lists.h"
#include "tal/postgresql/statements.h"
#include "tal/sql/bounded_engine.h"
#include "tal/sql/deadline.h"
#include "tal/sql/message.h"
#include "tal/status.h"

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
    Result rows = run(usageStatement());
    return usage_.read(rows);
  }

  Communication communication() override {
    Result rows = run(communicationStatement());
    return communication_.read(rows);
  }

  std::vector<OpenFile> openFiles() override {
    Result rows = runFiles();
    return readFiles(rows);
  }

  std::vector<Client> clients() override {
    Result rows = run(clientsStatement());
    return readClients(rows);
  }

  std::vector<SqlConnection> sqlConnections() override {
    Result rows = run(sqlConnectionsStatement());
    return readSqlConnections(rows);
  }

 private:
  Result run(const Statement& statement) {
    return connection_.run(statement, sql::Deadline(sql::kCallLimit));
  }

  // Somebody may lock a relation after the locks were read and before its size is read, which then
  // waits until lock_timeout. The second statement locks no relation of a user.
  Result runFiles() {
    const sql::Deadline deadline(sql::kCallLimit);
    try {
      return connection_.run(filesStatement(), deadline);
    } catch (const Failure& failure) {
      if (failure.status() != Status::kCatalogLocked) throw;
    }
    return runFilesWithEstimatedSizes(deadline);
  }

  // Only locks on the catalog can still cause a wait. If the server itself ended the wait, it has
  // answered, and the session can still be used.
  Result runFilesWithEstimatedSizes(const sql::Deadline& deadline) {
    try {
      return connection_.run(filesWithEstimatedSizesStatement(), deadline);
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

// Without the privilege nothing fails, but the figures are wrong, because the sessions of other
// users are hidden.
void checkPrivilege(const sql::RowSource& row, const std::string& user) {
  if (isTrue(row, 0)) return;
  throw sql::ExplainedFailure(Status::kPrivilegeMissing,
                              "GRANT pg_read_all_stats TO \"" + user + "\";");
}

// A pooler may drop the settings of the login. Then a function of a user could replace one of the
// system.
void checkSettings(const sql::RowSource& row) {
  for (std::size_t i = 0; i < kSettings.size(); ++i) {
    if (row.cell(i + 1) != kSettings[i].shown) {
      throw sql::ExplainedFailure(Status::kSettingsRefused, kSettings[i].name);
    }
  }
}

void checkAccount(Connection& connection, const sql::Deadline& deadline) {
  Result rows = connection.run(accountStatement(), deadline);
  if (!rows.next()) throw Failure(Status::kServerError);
  checkPrivilege(rows, connection.user());
  checkSettings(rows);
}

std::unique_ptr<Engine> openUnbounded(const Location& location, const Credentials& credentials,
                                      sql::SocketCutter& cutter) {
  const sql::Deadline deadline(sql::kCallLimit);
  Connection connection(login(location, credentials, cutter, deadline.within(sql::kConnectLimit)));
  if (connection.serverVersion() < kOldestVersion) throw Failure(Status::kVersionNotSupported);
  checkAccount(connection, deadline);
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
