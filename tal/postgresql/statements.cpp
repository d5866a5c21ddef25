#include "tal/postgresql/statements.h"

#include <string_view>

#include "tal/postgresql/read_figures.h"
#include "tal/postgresql/read_lists.h"

namespace tal::postgresql {
namespace {

constexpr std::string_view kNoSize = "0::bigint";

// kLocks has a placeholder for the size of a relation.
std::string overLocks(const char* statement, std::string_view size) {
  constexpr std::string_view kPlace = "ELSE {size}";
  std::string text = std::string(kLocks) + statement;
  return text.replace(text.find(kPlace), kPlace.size(), "ELSE " + std::string(size));
}

}  // namespace

const Statement& filesStatement() {
  static const Statement statement{
      "zelk_files", overLocks(kFiles, "pg_catalog.pg_relation_size(c.oid)"), kFileColumns};
  return statement;
}

const Statement& filesWithEstimatedSizesStatement() {
  static const Statement statement{
      "zelk_files_estimated", overLocks(kFiles, "c.relpages::bigint * here.page"), kFileColumns};
  return statement;
}

const Statement& clientsStatement() {
  static const Statement statement{"zelk_clients", overLocks(kClients, kNoSize), kClientColumns};
  return statement;
}

const Statement& usageStatement() {
  static const Statement statement{"zelk_usage", overLocks(kUsage, kNoSize), kUsageColumns};
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
