#include "tal/postgresql/read_usage.h"

#include "tal/sql/numbers.h"
#include "tal/status.h"

namespace tal::postgresql {
namespace {

enum Column : std::size_t {
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
static_assert(kUpTimeSeconds + 1 == kUsageColumns);

std::int64_t nearestMegabytes(std::int64_t bytes) {
  constexpr std::int64_t kMegabyte = std::int64_t{1024} * 1024;
  return sql::saturatingSum(bytes, kMegabyte / 2) / kMegabyte;
}

}  // namespace

Usage UsageReader::read(sql::RowSource& rows) {
  if (!rows.next()) throw Failure(Status::kServerError);
  const auto number = [&rows](Column column) { return sql::integer(rows, column); };
  return {.users = users_.sample(number(kUsers), number(kUsersMaximum)),
          .files = files_.sample(number(kFiles)),
          .handles = handles_.sample(number(kHandles)),
          .transactions = transactions_.sample(number(kTransactions)),
          .clients = clients_.sample(number(kClients), number(kUsersMaximum)),
          .workerThreads = workerThreads_.sample(number(kWorkers), number(kWorkersMaximum)),
          .locks = locks_.sample(number(kLocks)),
          .dataMb = dataMb_.sample(nearestMegabytes(number(kDataBytes))),
          .sessions = sessions_.sample(number(kSessions)),
          .upTimeSeconds = sql::count(rows, kUpTimeSeconds)};
}

}  // namespace tal::postgresql
