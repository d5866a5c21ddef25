#include "tal/mariadb/clients.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "tal/mariadb/thread_parts.h"
#include "tal/sql/numbers.h"

namespace tal::mariadb {
namespace {

enum Column : std::size_t { kPart, kKey, kName, kAddress, kNumber };

// What clients.sql tells by thread.
struct ThreadFacts {
  std::optional<std::string> ip;
  std::int64_t deleted = 0;
  std::int64_t updated = 0;
  std::int64_t inserted = 0;
  std::int64_t read = 0;
  std::int64_t fileOperations = 0;
};

struct Parts {
  std::vector<ClientRow> clients;
  ThreadParts<ThreadFacts> threads;
  std::unordered_map<std::int64_t, std::int64_t> processIds;  // by connection
  std::unordered_map<std::int64_t, std::int64_t> rowsLocked;  // by connection
};

std::int64_t& counterOf(ThreadFacts& facts, std::string_view variable) {
  if (variable == "Handler_delete") return facts.deleted;
  if (variable == "Handler_update") return facts.updated;
  if (variable == "Handler_write") return facts.inserted;
  return facts.read;
}

void add(std::int64_t& sum, std::int64_t number) { sum = sql::saturatingSum(sum, number); }

ClientRow clientOf(const sql::RowSource& row) {
  ClientRow client;
  client.connection = sql::integer(row, kKey);
  client.user = sql::text(row, kName);
  client.peer.hostAndPort = sql::text(row, kAddress);
  return client;
}

void addPart(Parts& parts, const sql::RowSource& row) {
  const std::int64_t key = sql::integer(row, kKey);
  const std::int64_t number = sql::integer(row, kNumber);
  const std::string part = sql::text(row, kPart);
  if (part == "P") {
    parts.clients.push_back(clientOf(row));
  } else if (part == "T") {
    parts.threads.serve(key, number);
  } else if (part == "S") {
    parts.threads.ofThread(key).ip = sql::text(row, kAddress);
  } else if (part == "H") {
    add(counterOf(parts.threads.ofThread(key), sql::text(row, kName)), number);
  } else if (part == "W") {
    add(parts.threads.ofThread(key).fileOperations, number);
  } else if (part == "A") {
    parts.processIds[key] = number;
  } else if (part == "X") {
    parts.rowsLocked[key] = number;
  }
}

void addThread(ClientRow& client, const ThreadFacts& facts) {
  client.peer.ip = facts.ip;
  client.recordsDeleted = facts.deleted;
  client.recordsUpdated = facts.updated;
  client.recordsInserted = facts.inserted;
  client.recordsRead = facts.read;
  client.diskAccesses = facts.fileOperations;
}

void join(ClientRow& client, Parts& parts) {
  if (const ThreadFacts* const facts = parts.threads.ofConnection(client.connection)) {
    addThread(client, *facts);
  }
  if (const auto id = parts.processIds.find(client.connection); id != parts.processIds.end()) {
    client.processId = id->second;
  }
  if (const auto rows = parts.rowsLocked.find(client.connection); rows != parts.rowsLocked.end()) {
    client.rowsLocked = rows->second;
  }
}

Client reportedClient(const ClientRow& row) {
  Client client;
  client.id = std::to_string(row.connection);
  client.site = row.peer.site();
  client.networkAddress = row.peer.address();
  client.recordsDeleted = sql::clampUnsigned(row.recordsDeleted);
  client.recordsUpdated = sql::clampUnsigned(row.recordsUpdated);
  client.recordsInserted = sql::clampUnsigned(row.recordsInserted);
  client.recordsRead = sql::clampUnsigned(row.recordsRead);
  client.diskAccesses = sql::clampUnsigned(row.diskAccesses);
  client.locksUsed = sql::clampUnsigned(row.rowsLocked.value_or(0));
  client.transactionState =
      row.rowsLocked ? transaction_state::kConcurrent : transaction_state::kNone;
  client.processId = sql::clampUnsigned(row.processId);
  client.connectionNumber = sql::clampUnsigned(row.connection);
  client.sessionName =
      row.user + "@" + std::string(hostOf(row.peer.hostAndPort)) + " #" + client.id;
  return client;
}

void addHandle(Client& client, const TableHandle& handle, const TableFiles& files) {
  const TableName& table = handle.use->table;
  if (handle.use->granted == Strength::kExclusive) {
    client.transactionState = transaction_state::kExclusive;
  }
  client.handles.push_back(
      {.openMode = handle.openMode,
       .recordLockType = handle.recordLockType,
       .waitState = handle.waitState,
       .transactionState = handle.transactionState,
       .fileName = handle.file ? files.file(*handle.file).path : table.schema + "." + table.table});
}

}  // namespace

std::vector<ClientRow> decodeClients(sql::RowSource& rows) {
  Parts parts;
  while (rows.next()) addPart(parts, rows);
  for (ClientRow& client : parts.clients) join(client, parts);
  std::sort(parts.clients.begin(), parts.clients.end(),
            [](const auto& a, const auto& b) { return a.connection < b.connection; });
  return std::move(parts.clients);
}

std::vector<Client> clientsOf(const std::vector<ClientRow>& rows,
                              const std::vector<TableHandle>& handles, const TableFiles& files) {
  std::vector<Client> clients;
  std::unordered_map<std::int64_t, std::size_t> indexes;
  clients.reserve(rows.size());
  for (const ClientRow& row : rows) {
    indexes[row.connection] = clients.size();
    clients.push_back(reportedClient(row));
  }
  for (const TableHandle& handle : handles) {
    const auto client = indexes.find(handle.use->owner.connection);
    if (client != indexes.end()) addHandle(clients[client->second], handle, files);
  }
  return clients;
}

}  // namespace tal::mariadb
