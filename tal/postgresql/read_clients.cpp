#include "tal/postgresql/read_clients.h"

#include <map>
#include <string>

#include "tal/postgresql/lock_codes.h"
#include "tal/postgresql/result.h"

namespace tal::postgresql {
namespace {

enum Column : std::size_t {
  kProcess,
  kIsRemote,
  kNetworkAddress,
  kLocksUsed,
  kExcludesWriters,
  kInTransaction,
  kSessionName,
  kFileName,
  kLock,
};
static_assert(kLock + kLockColumns == kClientColumns);

std::int32_t transactionStateIn(const sql::RowSource& row) {
  if (isTrue(row, kExcludesWriters)) return transaction_state::kExclusive;
  return isTrue(row, kInTransaction) ? transaction_state::kConcurrent : transaction_state::kNone;
}

// Figures that the server does not count for each session stay 0.
Client clientIn(const sql::RowSource& row) {
  Client client;
  client.id = sql::text(row, kProcess);
  client.site = isTrue(row, kIsRemote) ? site::kRemote : site::kLocal;
  client.networkAddress = sql::text(row, kNetworkAddress);
  client.locksUsed = sql::count(row, kLocksUsed);
  client.transactionState = transactionStateIn(row);
  client.processId = sql::count(row, kProcess);
  client.sessionName = sql::text(row, kSessionName);
  return client;
}

ClientHandle handleIn(const sql::RowSource& row) {
  const LockUse use = lockUseIn(row, kLock);
  return {.openMode = openModeOf(use),
          .recordLockType = recordLockTypeOf(use),
          .waitState = waitStateOf(use),
          .transactionState = transactionStateOf(use),
          .fileName = sql::text(row, kFileName)};
}

}  // namespace

std::vector<Client> readClients(sql::RowSource& rows) {
  std::vector<Client> clients;
  std::map<std::string, std::size_t> indexes;
  while (rows.next()) {
    const auto [found, isNew] = indexes.try_emplace(sql::text(rows, kProcess), clients.size());
    if (isNew) clients.push_back(clientIn(rows));
    if (rows.cell(kFileName)) clients[found->second].handles.push_back(handleIn(rows));
  }
  return clients;
}

}  // namespace tal::postgresql
