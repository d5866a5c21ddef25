#include "tal/mariadb/read_usage.h"

#include "tal/mariadb/named_values.h"

namespace tal::mariadb {
namespace {

constexpr std::int64_t kMegabyte = std::int64_t{1024} * 1024;

std::int64_t wholeMegabytes(std::int64_t bytes) {
  return bytes / kMegabyte + (bytes % kMegabyte > 0 ? 1 : 0);
}

Gauge workerThreads(const NamedValues& values, sql::Peak& peak) {
  if (hasThreadPool(values)) return poolThreads(values, peak);
  return peak.sample(sql::saturatingSum(values["THREADS_CONNECTED"], values["THREADS_CACHED"]));
}

}  // namespace

Usage UsageReader::read(sql::RowSource& rows) {
  const NamedValues values(rows);
  Usage usage;
  usage.users = connections(values);
  usage.files =
      files_.sample(sql::saturatingSum(values["OPEN_FILES"], values["INNODB_NUM_OPEN_FILES"]),
                    values["OPEN_FILES_LIMIT"]);
  usage.handles = handles_.sample(values["OPEN_TABLES"], values["TABLE_OPEN_CACHE"]);
  usage.transactions = transactions_.sample(values["x_transactions"]);
  usage.clients = connections(values);
  usage.workerThreads = workerThreads(values, workerThreads_);
  usage.locks = locks_.sample(values["x_locks"]);
  usage.dataMb = dataMb_.sample(wholeMegabytes(values["x_data_bytes"]));
  usage.sessions = connections(values);
  usage.upTimeSeconds = sql::clampUnsigned(values.needed("UPTIME"));
  return usage;
}

}  // namespace tal::mariadb
