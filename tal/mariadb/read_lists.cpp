#include "tal/mariadb/read_lists.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "tal/mariadb/thread_parts.h"
#include "tal/sql/figures.h"

namespace tal::mariadb {
namespace {

std::string sessionNameOf(const ConnectionFacts& facts) {
  return facts.user + "@" + std::string(hostOf(facts.peer.hostAndPort)) + " #" +
         std::to_string(facts.connection);
}

Client clientOf(const ConnectionFacts& facts) {
  Client client;
  client.id = std::to_string(facts.connection);
  client.site = facts.peer.site();
  client.networkAddress = facts.peer.address();
  client.recordsDeleted = sql::clampUnsigned(facts.thread.recordsDeleted);
  client.recordsUpdated = sql::clampUnsigned(facts.thread.recordsUpdated);
  client.recordsInserted = sql::clampUnsigned(facts.thread.recordsInserted);
  client.recordsRead = sql::clampUnsigned(facts.thread.recordsRead);
  client.diskAccesses = sql::clampUnsigned(facts.thread.fileOperations);
  client.locksUsed = sql::clampUnsigned(facts.rowsLocked.value_or(0));
  client.transactionState =
      facts.rowsLocked ? transaction_state::kConcurrent : transaction_state::kNone;
  client.processId = sql::clampUnsigned(facts.words.processId);
  client.connectionNumber = sql::clampUnsigned(facts.connection);
  client.sessionName = sessionNameOf(facts);
  return client;
}

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

std::vector<Client> readClients(sql::RowSource& rows) {
  std::vector<Client> clients;
  std::ranges::transform(joinParts(rows), std::back_inserter(clients), clientOf);
  return clients;
}

std::vector<SqlConnection> readSqlConnections(sql::RowSource& rows) {
  std::vector<SqlConnection> connections;
  std::ranges::transform(joinParts(rows), std::back_inserter(connections), connectionOf);
  return connections;
}

}  // namespace tal::mariadb
