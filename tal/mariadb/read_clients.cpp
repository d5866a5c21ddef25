#include "tal/mariadb/read_clients.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "tal/mariadb/thread_parts.h"
#include "tal/sql/numbers.h"

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

}  // namespace

std::vector<Client> readClients(sql::RowSource& rows) {
  std::vector<Client> clients;
  std::ranges::transform(joinParts(rows), std::back_inserter(clients), clientOf);
  return clients;
}

}  // namespace tal::mariadb
