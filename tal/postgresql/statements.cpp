#include "tal/postgresql/statements.h"

#include <string_view>

#include "tal/postgresql/read_clients.h"
#include "tal/postgresql/read_communication.h"
#include "tal/postgresql/read_files.h"
#include "tal/postgresql/read_sql_connections.h"
#include "tal/postgresql/read_usage.h"

namespace tal::postgresql {
namespace {

// kFiles leaves open what the size of a relation is.
std::string filesBySize(std::string_view size) {
  constexpr std::string_view kPlace = "{size}";
  std::string text = std::string(kLocks) + kFiles;
  const std::size_t last = text.rfind(kPlace);
  return text.replace(last, kPlace.size(), size);
}

}  // namespace

const Statement& filesStatement() {
  static const Statement statement{"zelk_files", filesBySize("pg_catalog.pg_relation_size(r.oid)"),
                                   kFileColumns};
  return statement;
}

const Statement& filesWithEstimatedSizesStatement() {
  static const Statement statement{"zelk_files_estimated",
                                   filesBySize("r.relpages::bigint * page.size"), kFileColumns};
  return statement;
}

const Statement& clientsStatement() {
  static const Statement statement{"zelk_clients", std::string(kLocks) + kClients, kClientColumns};
  return statement;
}

const Statement& usageStatement() {
  static const Statement statement{"zelk_usage", std::string(kLocks) + kUsage, kUsageColumns};
  return statement;
}

const Statement& communicationStatement() {
  static const Statement statement{"zelk_communication", kCommunication, kCommunicationColumns};
  return statement;
}

const Statement& sqlConnectionsStatement() {
  static const Statement statement{"zelk_sql_connections", kSqlConnections, kSqlConnectionColumns};
  return statement;
}

const Statement& accountStatement() {
  static const Statement statement{"zelk_account", kAccount, 8};
  return statement;
}

}  // namespace tal::postgresql
