#include "tal/postgresql/sql_connections.h"

#include "tal/sql/numbers.h"

namespace tal::postgresql {
namespace {

enum Column : std::size_t {
  kHost,
  kDataSource,
  kApplication,
  kNetworkAddress,
  kUser,
  kStatus,
  kPeriodMs,
  kTotalSeconds,
};

}  // namespace

std::vector<SqlConnection> readSqlConnections(sql::RowSource& rows) {
  std::vector<SqlConnection> connections;
  while (rows.next()) {
    connections.push_back({.clientHost = sql::text(rows, kHost),
                           .dataSource = sql::text(rows, kDataSource),
                           .application = sql::text(rows, kApplication),
                           .networkAddress = sql::text(rows, kNetworkAddress),
                           .userName = sql::text(rows, kUser),
                           .status = sql::code(rows, kStatus, connection_status::kIdle),
                           .periodMs = sql::count(rows, kPeriodMs),
                           .totalTime = sql::count(rows, kTotalSeconds)});
  }
  return connections;
}

}  // namespace tal::postgresql
