#include "tal/mariadb/sql_connections.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>

#include "tal/mariadb/peer.h"
#include "tal/mariadb/thread_parts.h"
#include "tal/sql/numbers.h"

namespace tal::mariadb {
namespace {

enum Column : std::size_t { kPart, kKey, kUser, kAddress, kDetail, kCommand, kNumber };

// One row of the process list.
struct Process {
  std::int64_t connection = 0;
  std::string user;
  std::string hostAndPort;
  std::string database;
  std::string command;
  std::int64_t periodMs = 0;
};

struct ThreadFacts {
  std::optional<std::string> ip;
  // All that it has done and waited for, but for its present command; none if it is not measured.
  std::optional<double> pastMicroseconds;
};

// What a client tells of itself when it connects.
struct ClientWords {
  std::string program;
  std::string library;
};

struct Parts {
  std::vector<Process> processes;
  ThreadParts<ThreadFacts> threads;
  std::unordered_map<std::int64_t, ClientWords> words;  // by connection
};

Process processOf(const sql::RowSource& row) {
  return {.connection = sql::integer(row, kKey),
          .user = sql::text(row, kUser),
          .hostAndPort = sql::text(row, kAddress),
          .database = sql::text(row, kDetail),
          .command = sql::text(row, kCommand),
          .periodMs = std::max<std::int64_t>(sql::integer(row, kNumber), 0)};
}

void addWord(ClientWords& words, const sql::RowSource& row) {
  (sql::text(row, kCommand) == "program_name" ? words.program : words.library) =
      sql::text(row, kDetail);
}

void addPast(ThreadFacts& facts, std::int64_t microseconds) {
  facts.pastMicroseconds = facts.pastMicroseconds.value_or(0) + static_cast<double>(microseconds);
}

void addPart(Parts& parts, const sql::RowSource& row) {
  const std::int64_t key = sql::integer(row, kKey);
  const std::string part = sql::text(row, kPart);
  if (part == "P") {
    parts.processes.push_back(processOf(row));
  } else if (part == "T") {
    parts.threads.serve(key, sql::integer(row, kNumber));
  } else if (part == "S") {
    parts.threads.ofThread(key).ip = sql::text(row, kAddress);
  } else if (part == "D") {
    if (row.cell(kNumber)) addPast(parts.threads.ofThread(key), sql::integer(row, kNumber));
  } else if (part == "A") {
    addWord(parts.words[key], row);
  }
}

std::uint16_t statusOf(const std::string& command) {
  if (command == "Killed") return connection_status::kDying;
  return command == "Sleep" ? connection_status::kIdle : connection_status::kActive;
}

std::string applicationOf(const Parts& parts, std::int64_t connection) {
  const auto words = parts.words.find(connection);
  if (words == parts.words.end()) return {};
  return words->second.program.empty() ? words->second.library : words->second.program;
}

// The server has no time of connecting; what it has measured since then adds up to it. 0 where it
// does not measure.
std::uint32_t totalSeconds(const ThreadFacts* facts, std::int64_t periodMs) {
  if (facts == nullptr || !facts->pastMicroseconds) return 0;
  constexpr double kLongest = 4294967295.0;
  const double seconds = *facts->pastMicroseconds / 1e6 + static_cast<double>(periodMs) / 1e3;
  return static_cast<std::uint32_t>(std::clamp(seconds, 0.0, kLongest));
}

SqlConnection connectionOf(const Process& process, Parts& parts) {
  const ThreadFacts* const facts = parts.threads.ofConnection(process.connection);
  const Peer peer{.hostAndPort = process.hostAndPort,
                  .ip = facts == nullptr ? std::nullopt : facts->ip};
  SqlConnection result;
  result.clientHost = hostOf(process.hostAndPort);
  result.dataSource = process.database;
  result.application = applicationOf(parts, process.connection);
  result.networkAddress = peer.address();
  result.userName = process.user;
  result.status = statusOf(process.command);
  result.periodMs = sql::clampUnsigned(process.periodMs);
  result.totalTime = totalSeconds(facts, process.periodMs);
  return result;
}

}  // namespace

std::vector<SqlConnection> decodeSqlConnections(sql::RowSource& rows) {
  Parts parts;
  while (rows.next()) addPart(parts, rows);
  std::sort(parts.processes.begin(), parts.processes.end(),
            [](const auto& a, const auto& b) { return a.connection < b.connection; });

  std::vector<SqlConnection> connections;
  connections.reserve(parts.processes.size());
  for (const Process& process : parts.processes) {
    connections.push_back(connectionOf(process, parts));
  }
  return connections;
}

}  // namespace tal::mariadb
