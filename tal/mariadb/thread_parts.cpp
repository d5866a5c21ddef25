#include "tal/mariadb/thread_parts.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "tal/engine.h"
#include "tal/sql/figures.h"

namespace tal::mariadb {
namespace {

constexpr std::string_view kSocket = "Socket";

enum Column : std::size_t { kPart, kKey, kName, kAddress, kDetail, kCommand, kNumber };

enum class Part : std::uint8_t {
  kConnection,
  kThreadOfConnection,
  kSocketOfThread,
  kRecordsOfThread,
  kFileOperationsOfThread,
  kTimeOfThread,
  kWordOfClient,
  kTransaction,
};

constexpr auto kParts = std::to_array<std::pair<std::string_view, Part>>({
    {"connection",         Part::kConnection            },
    {"thread",             Part::kThreadOfConnection    },
    {"socket",             Part::kSocketOfThread        },
    {"record counter",     Part::kRecordsOfThread       },
    {"file operations",    Part::kFileOperationsOfThread},
    {"time",               Part::kTimeOfThread          },
    {"word of the client", Part::kWordOfClient          },
    {"transaction",        Part::kTransaction           },
});

std::int64_t& counterOf(ThreadFacts& facts, std::string_view variable) {
  if (variable == "Handler_delete") return facts.recordsDeleted;
  if (variable == "Handler_update") return facts.recordsUpdated;
  if (variable == "Handler_write") return facts.recordsInserted;
  return facts.recordsRead;
}

void add(std::int64_t& sum, std::int64_t number) { sum = sql::saturatingSum(sum, number); }

void addTime(ThreadFacts& facts, const sql::RowSource& row) {
  if (!row.cell(kNumber)) return;
  facts.pastMicroseconds =
      facts.pastMicroseconds.value_or(0) + static_cast<double>(sql::integer(row, kNumber));
}

void addWord(ClientWords& words, const sql::RowSource& row) {
  const std::string name = sql::text(row, kName);
  if (name == "program_name") words.program = sql::text(row, kDetail);
  if (name == "_client_name") words.library = sql::text(row, kDetail);
  if (name == "_pid") words.processId = sql::integer(row, kNumber);
}

ConnectionFacts connectionOf(const sql::RowSource& row) {
  ConnectionFacts result;
  result.connection = sql::integer(row, kKey);
  result.user = sql::text(row, kName);
  result.peer.hostAndPort = sql::text(row, kAddress);
  result.database = sql::text(row, kDetail);
  result.command = sql::text(row, kCommand);
  result.periodMs = std::max<std::int64_t>(sql::integer(row, kNumber), 0);
  return result;
}

// The value at `key`, or a default value.
template <typename Value>
Value valueAt(const std::map<std::int64_t, Value>& values, std::int64_t key) {
  const auto found = values.find(key);
  return found == values.end() ? Value{} : found->second;
}

class Joiner {
 public:
  void take(const sql::RowSource& row) {
    const auto part = sql::codeOf(kParts, row, kPart);
    const std::int64_t key = sql::integer(row, kKey);
    if (!part) return;
    switch (*part) {
      case Part::kConnection:
        return connections_.push_back(connectionOf(row));
      case Part::kThreadOfConnection:
        threads_[sql::integer(row, kNumber)] = key;
        return;
      case Part::kSocketOfThread:
        facts_[key].ip = sql::text(row, kAddress);
        return;
      case Part::kRecordsOfThread:
        return add(counterOf(facts_[key], sql::text(row, kName)), sql::integer(row, kNumber));
      case Part::kFileOperationsOfThread:
        return add(facts_[key].fileOperations, sql::integer(row, kNumber));
      case Part::kTimeOfThread:
        return addTime(facts_[key], row);
      case Part::kWordOfClient:
        return addWord(words_[key], row);
      case Part::kTransaction:
        rowsLocked_[key] = sql::integer(row, kNumber);
    }
  }

  std::vector<ConnectionFacts> joined() {
    std::ranges::sort(connections_, {}, &ConnectionFacts::connection);
    for (ConnectionFacts& connection : connections_) join(connection);
    return std::move(connections_);
  }

 private:
  void join(ConnectionFacts& connection) const {
    const std::int64_t key = connection.connection;
    if (const auto thread = threads_.find(key); thread != threads_.end()) {
      connection.thread = valueAt(facts_, thread->second);
      connection.peer.ip = connection.thread.ip;
    }
    connection.words = valueAt(words_, key);
    connection.rowsLocked = valueAt(rowsLocked_, key);
  }

  std::vector<ConnectionFacts> connections_;
  std::map<std::int64_t, ThreadFacts> facts_;     // by thread
  std::map<std::int64_t, std::int64_t> threads_;  // these by connection
  std::map<std::int64_t, ClientWords> words_;
  std::map<std::int64_t, std::optional<std::int64_t>> rowsLocked_;
};

}  // namespace

std::string_view hostOf(std::string_view hostAndPort) {
  const std::size_t colon = hostAndPort.rfind(':');
  if (colon == std::string_view::npos) return hostAndPort;
  const std::string_view port = hostAndPort.substr(colon + 1);
  const bool isPort = !port.empty() && port.find_first_not_of("0123456789") == port.npos;
  return isPort ? hostAndPort.substr(0, colon) : hostAndPort;
}

std::string Peer::address() const {
  if (!ip) return std::string(hostOf(hostAndPort));
  return ip->empty() ? std::string(kSocket) : *ip;
}

std::int32_t Peer::site() const {
  const bool bySocket = ip ? ip->empty() : hostOf(hostAndPort).size() == hostAndPort.size();
  return bySocket ? site::kLocal : site::kRemote;
}

std::vector<ConnectionFacts> joinParts(sql::RowSource& rows) {
  Joiner joiner;
  while (rows.next()) joiner.take(rows);
  return joiner.joined();
}

}  // namespace tal::mariadb
