#include "tal/postgresql/read_sql_connections.h"

#include "tal/postgresql/result.h"

namespace tal::postgresql {
namespace {

enum Column : std::size_t {
  kHost,
  kDataSource,
  kApplication,
  kNetworkAddress,
  kUser,
  kIsActive,
  kPeriodMs,
  kTotalSeconds,
};
static_assert(kTotalSeconds + 1 == kSqlConnectionColumns);

std::uint16_t statusIn(const sql::RowSource& row) {
  return isTrue(row, kIsActive) ? connection_status::kActive : connection_status::kIdle;
}

}  // namespace

std::vector<SqlConnection> readSqlConnections(sql::RowSource& rows) {
  std::vector<SqlConnection> connections;
  while (rows.next()) {
    connections.push_back({.clientHost = sql::text(rows, kHost),
                           .dataSource = sql::text(rows, kDataSource),
                           .application = sql::text(rows, kApplication),
                           .networkAddress = sql::text(rows, kNetworkAddress),
                           .userName = sql::text(rows, kUser),
                           .status = statusIn(rows),
                           .periodMs = sql::count(rows, kPeriodMs),
                           .totalTime = sql::count(rows, kTotalSeconds)});
  }
  return connections;
}

}  // namespace tal::postgresql
