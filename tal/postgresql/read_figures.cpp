#include "tal/postgresql/read_figures.h"

#include "tal/sql/figures.h"
#include "tal/status.h"

namespace tal::postgresql {
namespace {

struct UsageColumn {
  enum : std::size_t {
    kUsers,
    kUsersMaximum,
    kFiles,
    kHandles,
    kTransactions,
    kClients,
    kWorkers,
    kWorkersMaximum,
    kLocks,
    kDataBytes,
    kSessions,
    kUpTimeSeconds,
  };
};
static_assert(UsageColumn::kUpTimeSeconds + 1 == kUsageColumns);

std::int64_t nearestMegabytes(std::int64_t bytes) {
  constexpr std::int64_t kMegabyte = std::int64_t{1024} * 1024;
  return sql::saturatingSum(bytes, kMegabyte / 2) / kMegabyte;
}

struct CommunicationColumn {
  enum : std::size_t {
    kTransactions,
    kAbandoned,
    kRemoteSessions,
    kServingProcesses,
    kMaximumConnections,
    kMaximumSenders,
  };
};
static_assert(CommunicationColumn::kMaximumSenders + 1 == kCommunicationColumns);

}  // namespace

Usage UsageReader::read(sql::RowSource& rows) {
  if (!rows.next()) throw Failure(Status::kServerError);
  const auto number = [&rows](std::size_t column) { return sql::integer(rows, column); };
  return {
      .users = users_.sample(number(UsageColumn::kUsers), number(UsageColumn::kUsersMaximum)),
      .files = files_.sample(number(UsageColumn::kFiles)),
      .handles = handles_.sample(number(UsageColumn::kHandles)),
      .transactions = transactions_.sample(number(UsageColumn::kTransactions)),
      .clients = clients_.sample(number(UsageColumn::kClients), number(UsageColumn::kUsersMaximum)),
      .workerThreads = workerThreads_.sample(number(UsageColumn::kWorkers),
                                             number(UsageColumn::kWorkersMaximum)),
      .locks = locks_.sample(number(UsageColumn::kLocks)),
      .dataMb = dataMb_.sample(nearestMegabytes(number(UsageColumn::kDataBytes))),
      .sessions = sessions_.sample(number(UsageColumn::kSessions)),
      .upTimeSeconds = sql::count(rows, UsageColumn::kUpTimeSeconds)};
}

Communication CommunicationReader::read(sql::RowSource& rows) {
  if (!rows.next()) throw Failure(Status::kServerError);
  const auto number = [&rows](std::size_t column) { return sql::integer(rows, column); };
  // Clamped before they are added, because the server may send any number.
  const std::int64_t connections =
      sql::clampMaximum(number(CommunicationColumn::kMaximumConnections));
  const std::int64_t senders = sql::clampMaximum(number(CommunicationColumn::kMaximumSenders));

  Communication result;
  result.requests = sql::count(rows, CommunicationColumn::kTransactions);
  result.remoteSessions =
      remoteSessions_.sample(number(CommunicationColumn::kRemoteSessions), connections);
  result.threads =
      threads_.sample(number(CommunicationColumn::kServingProcesses), connections + senders);
  result.timeouts = sql::count(rows, CommunicationColumn::kAbandoned);
  result.protocols.push_back({.code = kTcpIpProtocol,
                              .requests = 0,
                              .currentSessions = result.remoteSessions.current,
                              .peakSessions = result.remoteSessions.peak});
  return result;
}

}  // namespace tal::postgresql
