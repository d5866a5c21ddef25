#include "tal/mariadb/mariadb.h"

#include <utility>

#include "tal/mariadb/clients.h"
#include "tal/mariadb/communication.h"
#include "tal/mariadb/data_files.h"
#include "tal/mariadb/open_files.h"
#include "tal/mariadb/option_files.h"
#include "tal/mariadb/session_keeper.h"
#include "tal/mariadb/sql_connections.h"
#include "tal/mariadb/statements.h"
#include "tal/mariadb/table_handles.h"
#include "tal/mariadb/table_locks.h"
#include "tal/mariadb/usage.h"
#include "tal/sql/system_user.h"

namespace tal::mariadb {
namespace {

using sql::Deadline;

constexpr std::string_view kOptionGroup = "zelk";

class MariaDbEngine final : public Engine {
 public:
  MariaDbEngine(Location location, Credentials credentials, Encryption encryption)
      : sessions_(std::move(location), std::move(credentials), std::move(encryption)) {}

  Information information() override { return {}; }

  Version version() override {
    const std::int64_t version = sessions_.version();
    return {.major = sql::clampMaximum(version / 10000),
            .minor = sql::clampMaximum(version / 100 % 100),
            .build = sql::clampMaximum(version % 100)};
  }

  Usage usage() override {
    return sessions_.ask([this](Session& session, const Deadline& call) {
      Result rows = session.query(kUsage, call);
      return usage_.read(rows);
    });
  }

  Communication communication() override {
    return sessions_.ask([this](Session& session, const Deadline& call) {
      Result rows = session.query(kCommunication, call);
      return communication_.read(rows, session.facts().networking);
    });
  }

  std::vector<OpenFile> openFiles() override {
    return sessions_.ask([](Session& session, const Deadline& call) {
      const LockPicture picture = locks(session, call);
      const std::vector<DataFile> files = dataFiles(session, call);
      const std::vector<TableUse> uses = mergeLocks(picture.locks);
      return openFilesOf(files, handlesOf(uses, TableFiles(files)), picture, session.facts());
    });
  }

  std::vector<Client> clients() override {
    return sessions_.ask([](Session& session, const Deadline& call) {
      Result rows = session.query(kClients, call);
      const std::vector<ClientRow> clientRows = decodeClients(rows);
      const std::vector<TableUse> uses = mergeLocks(locks(session, call).locks);
      const std::vector<DataFile> files = dataFiles(session, call);
      const TableFiles tableFiles(files);
      return clientsOf(clientRows, handlesOf(uses, tableFiles), tableFiles);
    });
  }

  std::vector<SqlConnection> sqlConnections() override {
    return sessions_.ask([](Session& session, const Deadline& call) {
      Result rows = session.query(kSqlConnections, call);
      return decodeSqlConnections(rows);
    });
  }

 private:
  static LockPicture locks(Session& session, const Deadline& call) {
    Result rows = session.query(kHandles, call);
    return decodeLocks(rows, session.id());
  }

  static std::vector<DataFile> dataFiles(Session& session, const Deadline& call) {
    Result rows = session.query(kFiles, call);
    return decodeFiles(rows, session.facts());
  }

  SessionKeeper sessions_;
  UsageReader usage_;
  CommunicationReader communication_;
};

Credentials completed(Credentials credentials, const Options& options) {
  if (credentials.user.empty()) credentials.user = sql::systemUser();
  const auto password = options.find("password");
  if (credentials.password.empty() && password != options.end()) {
    credentials.password = password->second;
  }
  return credentials;
}

}  // namespace

std::unique_ptr<Engine> open(std::string_view location, const Credentials& credentials) {
  Location parsed = parseLocation(location);
  const Options options = readOptions(kOptionGroup, standardOptionFiles());
  return std::make_unique<MariaDbEngine>(std::move(parsed), completed(credentials, options),
                                         encryptionOf(options));
}

}  // namespace tal::mariadb
