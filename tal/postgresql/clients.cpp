#include "tal/postgresql/clients.h"

#include <string>
#include <unordered_map>

#include "tal/sql/numbers.h"

namespace tal::postgresql {
namespace {

enum Column : std::size_t {
  kProcess,
  kSite,
  kNetworkAddress,
  kLocksUsed,
  kTransactionState,
  kSessionName,
  kFileName,
  kOpenMode,
  kLockType,
  kWaitState,
  kHandleTransactionState,
};

// What the server does not count for each session stays 0.
Client clientIn(const sql::RowSource& row) {
  Client client;
  client.id = sql::text(row, kProcess);
  client.site = sql::code(row, kSite, site::kUnknown);
  client.networkAddress = sql::text(row, kNetworkAddress);
  client.locksUsed = sql::count(row, kLocksUsed);
  client.transactionState = sql::code(row, kTransactionState, transaction_state::kUnknown);
  client.processId = sql::count(row, kProcess);
  client.sessionName = sql::text(row, kSessionName);
  return client;
}

ClientHandle handleIn(const sql::RowSource& row) {
  return {.openMode = sql::code(row, kOpenMode, open_mode::kUnknown),
          .recordLockType = sql::code(row, kLockType, record_lock::kUnknown),
          .waitState = sql::code(row, kWaitState, wait_state::kUnknown),
          .transactionState = sql::code(row, kHandleTransactionState, transaction_state::kUnknown),
          .fileName = sql::text(row, kFileName)};
}

}  // namespace

std::vector<Client> readClients(sql::RowSource& rows) {
  std::vector<Client> clients;
  std::unordered_map<std::string, std::size_t> indexes;
  while (rows.next()) {
    const auto [found, isNew] = indexes.try_emplace(sql::text(rows, kProcess), clients.size());
    if (isNew) clients.push_back(clientIn(rows));
    if (rows.cell(kFileName)) clients[found->second].handles.push_back(handleIn(rows));
  }
  return clients;
}

}  // namespace tal::postgresql
