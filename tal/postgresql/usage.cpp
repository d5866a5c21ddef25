#include "tal/postgresql/usage.h"

#include "tal/failure.h"
#include "tal/sql/numbers.h"

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
  kDataMb,
  kSessions,
  kUpTimeSeconds,
};

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
          .dataMb = dataMb_.sample(number(kDataMb)),
          .sessions = sessions_.sample(number(kSessions)),
          .upTimeSeconds = sql::clampUnsigned(number(kUpTimeSeconds))};
}

}  // namespace tal::postgresql
