#include "tal/mariadb/read_sql_connections.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "tal/mariadb/thread_parts.h"
#include "tal/sql/numbers.h"

namespace tal::mariadb {
namespace {

std::uint16_t statusOf(const std::string& command) {
  if (command == "Killed") return connection_status::kDying;
  return command == "Sleep" ? connection_status::kIdle : connection_status::kActive;
}

// The server does not keep the time of a connect. The times that it has measured since then add up
// to the whole. 0 if it does not measure.
std::uint32_t totalSeconds(const ConnectionFacts& facts) {
  if (!facts.thread.pastMicroseconds) return 0;
  constexpr double kLongest = 4294967295.0;
  const double past = *facts.thread.pastMicroseconds / 1e6;
  return static_cast<std::uint32_t>(
      std::clamp(past + static_cast<double>(facts.periodMs) / 1e3, 0.0, kLongest));
}

SqlConnection connectionOf(const ConnectionFacts& facts) {
  SqlConnection result;
  result.clientHost = hostOf(facts.peer.hostAndPort);
  result.dataSource = facts.database;
  result.application = facts.words.program.empty() ? facts.words.library : facts.words.program;
  result.networkAddress = facts.peer.address();
  result.userName = facts.user;
  result.status = statusOf(facts.command);
  result.periodMs = sql::clampUnsigned(facts.periodMs);
  result.totalTime = totalSeconds(facts);
  return result;
}

}  // namespace

std::vector<SqlConnection> readSqlConnections(sql::RowSource& rows) {
  std::vector<SqlConnection> connections;
  std::ranges::transform(joinParts(rows), std::back_inserter(connections), connectionOf);
  return connections;
}

}  // namespace tal::mariadb
