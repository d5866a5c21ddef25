#include "tal/postgresql/read_communication.h"

#include "tal/sql/numbers.h"
#include "tal/status.h"

namespace tal::postgresql {
namespace {

enum Column : std::size_t {
  kTransactions,
  kAbandoned,
  kRemoteSessions,
  kServingProcesses,
  kMaximumConnections,
  kMaximumSenders,
};
static_assert(kMaximumSenders + 1 == kCommunicationColumns);

}  // namespace

Communication CommunicationReader::read(sql::RowSource& rows) {
  if (!rows.next()) throw Failure(Status::kServerError);
  const auto number = [&rows](Column column) { return sql::integer(rows, column); };
  // Clamped before they are added, because the server may send any number.
  const std::int64_t connections = sql::clampMaximum(number(kMaximumConnections));
  const std::int64_t senders = sql::clampMaximum(number(kMaximumSenders));

  Communication result;
  result.requests = sql::count(rows, kTransactions);
  result.remoteSessions = remoteSessions_.sample(number(kRemoteSessions), connections);
  result.threads = threads_.sample(number(kServingProcesses), connections + senders);
  result.timeouts = sql::count(rows, kAbandoned);
  result.protocols.push_back({.code = kTcpIpProtocol,
                              .requests = 0,
                              .currentSessions = result.remoteSessions.current,
                              .peakSessions = result.remoteSessions.peak});
  return result;
}

}  // namespace tal::postgresql
