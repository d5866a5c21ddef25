#include "tal/mariadb/mariadb.h"

#include <unistd.h>

#include <string>
#include <utility>

#include "tal/mariadb/connection.h"
#include "tal/mariadb/data_files.h"
#include "tal/mariadb/handles.h"
#include "tal/mariadb/login.h"
#include "tal/mariadb/option_files.h"
#include "tal/mariadb/read_figures.h"
#include "tal/mariadb/read_lists.h"
#include "tal/mariadb/read_locks.h"
#include "tal/mariadb/statements.h"
#include "tal/sql/bounded_engine.h"
#include "tal/sql/limits.h"
#include "tal/sql/login.h"
#include "tal/sql/message.h"

namespace tal::mariadb {
namespace {

constexpr std::string_view kOptionGroup = "zelk";

class MariaDbEngine final : public Engine {
 public:
  explicit MariaDbEngine(SessionHandle session) : connection_(std::move(session)) {}

  [[nodiscard]] const ServerFacts& facts() const { return connection_.facts(); }

  Information information() override { return {}; }

  Version version() override {
    const std::int64_t version = connection_.version();
    return {.major = sql::clampMaximum(version / 10000),
            .minor = sql::clampMaximum(version / 100 % 100),
            .build = sql::clampMaximum(version % 100)};
  }

  Usage usage() override {
    Result rows = connection_.run(kUsage);
    return usage_.read(rows);
  }

  Communication communication() override {
    Result rows = connection_.run(kCommunication);
    return communication_.read(rows, connection_.facts().networking);
  }

  std::vector<OpenFile> openFiles() override {
    const LockPicture picture = locks();
    const std::vector<DataFile> files = dataFiles();
    std::vector<OpenFile> result =
        openFilesOf(files, handlesOf(picture, TableFiles(files)), connection_.facts());
    sql::limitHandles(result);
    return result;
  }

  std::vector<Client> clients() override {
    std::vector<Client> clients = listedClients();
    const LockPicture picture = locks();
    const std::vector<DataFile> files = dataFiles();
    const TableFiles tableFiles(files);
    addHandles(clients, handlesOf(picture, tableFiles), tableFiles);
    sql::limitHandles(clients);
    return clients;
  }

  std::vector<SqlConnection> sqlConnections() override {
    Result rows = connection_.run(kSqlConnections);
    return readSqlConnections(rows);
  }

 private:
  std::vector<Client> listedClients() {
    Result rows = connection_.run(kClients);
    return readClients(rows);
  }

  LockPicture locks() {
    Result rows = connection_.run(kLocks);
    return readLocks(rows, connection_.id());
  }

  std::vector<DataFile> dataFiles() {
    Result rows = connection_.run(kFiles);
    return readDataFiles(rows, connection_.facts());
  }

  Connection connection_;
  UsageReader usage_;
  CommunicationReader communication_;
};

Credentials completed(Credentials credentials, Options& options) {
  if (credentials.user.empty()) credentials.user = sql::systemUser();
  const auto password = options.find("password");
  if (credentials.password.empty() && password != options.end()) {
    credentials.password = password->second;
  }
  if (password != options.end()) wipe(password->second);
  return credentials;
}

// The line explains why a report may be empty.
void tellWhatIsMissing(const ServerFacts& facts) {
  if (::isatty(STDERR_FILENO) == 0) return;
  if (!facts.performanceSchema) return sql::tell(sql::message("NO_PERFORMANCE_SCHEMA"));
  if (!facts.metadataLocks) sql::tell(sql::message("NO_METADATA_LOCKS"));
}

}  // namespace

std::unique_ptr<Engine> open(std::string_view location, const Credentials& credentials) {
  const auto connect = [name = std::string(location), credentials](sql::SocketCutter& cutter) {
    const sql::Deadline deadline(sql::kConnectLimit);
    const Location parsed = parseLocation(name);
    Options options = readOptions(kOptionGroup, standardOptionFiles());
    auto engine = std::make_unique<MariaDbEngine>(
        login(parsed, completed(credentials, options), encryptionOf(options), cutter, deadline));
    tellWhatIsMissing(engine->facts());
    return engine;
  };
  return sql::openBounded(connect);
}

}  // namespace tal::mariadb
