#include "tal/postgresql/read_lists.h"

#include <map>
#include <set>
#include <string>
#include <tuple>

#include "tal/postgresql/connection.h"
#include "tal/postgresql/lock_codes.h"
#include "tal/sql/figures.h"

namespace tal::postgresql {
namespace {

struct FileColumn {
  enum : std::size_t {
    kDatabase,
    kRelation,
    kName,
    kPageSize,
    kBytes,
    kReadOnly,
    kLock,
    kProcess = kLock + kLockColumns,
    kClientName,
  };
};
static_assert(FileColumn::kClientName + 1 == kFileColumns);

constexpr std::uint8_t flagOf(bool value) { return value ? flag::kYes : flag::kNo; }

OpenFile fileIn(const sql::RowSource& row) {
  return {.name = sql::text(row, FileColumn::kName),
          .pageSize = sql::count(row, FileColumn::kPageSize),
          .readOnly = flagOf(isTrue(row, FileColumn::kReadOnly)),
          .recordLocks = flag::kNo,
          .transactionLock = flag::kNo,
          .sizeKb = sql::kilobytes(sql::integer(row, FileColumn::kBytes)),
          .handles = {}};
}

void addHandle(OpenFile& file, const sql::RowSource& row) {
  const LockUse use = lockUseIn(row, FileColumn::kLock);
  if (recordLockTypeOf(use) != record_lock::kNone) file.recordLocks = flag::kYes;
  if (excludesWriters(use)) file.transactionLock = flag::kYes;
  file.handles.push_back({.clientIndex = sql::count(row, FileColumn::kProcess),
                          .openMode = openModeOf(use),
                          .recordLockType = recordLockTypeOf(use),
                          .waitState = waitStateOf(use),
                          .transactionState = transactionStateOf(use),
                          .clientName = sql::text(row, FileColumn::kClientName)});
}

// The parts of a name may have dots, so two relations can have the same name. Relations of
// different databases can even have the same number: the layer above makes their names different.
void distinguish(std::string& name, const std::string& relation, std::set<std::string>& names) {
  if (!names.insert(name).second) name += '#' + relation;
}

struct ClientColumn {
  enum : std::size_t {
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
};
static_assert(ClientColumn::kLock + kLockColumns == kClientColumns);

std::int32_t transactionStateIn(const sql::RowSource& row) {
  if (isTrue(row, ClientColumn::kExcludesWriters)) return transaction_state::kExclusive;
  return isTrue(row, ClientColumn::kInTransaction) ? transaction_state::kConcurrent
                                                   : transaction_state::kNone;
}

// Figures that the server does not count for each session stay 0.
Client clientIn(const sql::RowSource& row) {
  Client client;
  client.id = sql::text(row, ClientColumn::kProcess);
  client.site = isTrue(row, ClientColumn::kIsRemote) ? site::kRemote : site::kLocal;
  client.networkAddress = sql::text(row, ClientColumn::kNetworkAddress);
  client.locksUsed = sql::count(row, ClientColumn::kLocksUsed);
  client.transactionState = transactionStateIn(row);
  client.processId = sql::count(row, ClientColumn::kProcess);
  client.sessionName = sql::text(row, ClientColumn::kSessionName);
  return client;
}

ClientHandle handleIn(const sql::RowSource& row) {
  const LockUse use = lockUseIn(row, ClientColumn::kLock);
  return {.openMode = openModeOf(use),
          .recordLockType = recordLockTypeOf(use),
          .waitState = waitStateOf(use),
          .transactionState = transactionStateOf(use),
          .fileName = sql::text(row, ClientColumn::kFileName)};
}

struct ConnectionColumn {
  enum : std::size_t {
    kHost,
    kDataSource,
    kApplication,
    kNetworkAddress,
    kUser,
    kIsActive,
    kPeriodMs,
    kTotalSeconds,
  };
};
static_assert(ConnectionColumn::kTotalSeconds + 1 == kSqlConnectionColumns);

std::uint16_t statusIn(const sql::RowSource& row) {
  return isTrue(row, ConnectionColumn::kIsActive) ? connection_status::kActive
                                                  : connection_status::kIdle;
}

}  // namespace

std::vector<OpenFile> readFiles(sql::RowSource& rows) {
  using Key = std::tuple<std::string, std::string, std::string>;
  std::vector<OpenFile> files;
  std::map<Key, std::size_t> indexes;
  std::set<std::string> names;
  while (rows.next()) {
    const std::string relation = sql::text(rows, FileColumn::kRelation);
    const Key key{sql::text(rows, FileColumn::kDatabase), relation,
                  sql::text(rows, FileColumn::kName)};
    const auto [found, isNew] = indexes.try_emplace(key, files.size());
    if (isNew) distinguish(files.emplace_back(fileIn(rows)).name, relation, names);
    addHandle(files[found->second], rows);
  }
  return files;
}

std::vector<Client> readClients(sql::RowSource& rows) {
  std::vector<Client> clients;
  std::map<std::string, std::size_t> indexes;
  while (rows.next()) {
    const auto [found, isNew] =
        indexes.try_emplace(sql::text(rows, ClientColumn::kProcess), clients.size());
    if (isNew) clients.push_back(clientIn(rows));
    if (rows.cell(ClientColumn::kFileName))
      clients[found->second].handles.push_back(handleIn(rows));
  }
  return clients;
}

std::vector<SqlConnection> readSqlConnections(sql::RowSource& rows) {
  std::vector<SqlConnection> connections;
  while (rows.next()) {
    connections.push_back({.clientHost = sql::text(rows, ConnectionColumn::kHost),
                           .dataSource = sql::text(rows, ConnectionColumn::kDataSource),
                           .application = sql::text(rows, ConnectionColumn::kApplication),
                           .networkAddress = sql::text(rows, ConnectionColumn::kNetworkAddress),
                           .userName = sql::text(rows, ConnectionColumn::kUser),
                           .status = statusIn(rows),
                           .periodMs = sql::count(rows, ConnectionColumn::kPeriodMs),
                           .totalTime = sql::count(rows, ConnectionColumn::kTotalSeconds)});
  }
  return connections;
}

}  // namespace tal::postgresql
