#include "tal/mariadb/read_figures.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "tal/engine.h"
#include "tal/sql/figures.h"
#include "tal/sql/row.h"
#include "tal/status.h"

namespace tal::mariadb {
namespace {

// Figures that a statement returns as rows of a name and a number.
class NamedValues {
 public:
  explicit NamedValues(sql::RowSource& rows) {
    while (rows.next()) values_[sql::text(rows, 0)] = sql::integer(rows, 1);
  }

  // 0 for a figure that the server does not have.
  [[nodiscard]] std::int64_t operator[](std::string_view name) const {
    const auto value = values_.find(name);
    return value == values_.end() ? 0 : value->second;
  }

  // Throws Failure(kServerError) if the answer lacks a figure that every server has, because an
  // answer without rows must not look like an idle server.
  [[nodiscard]] std::int64_t needed(std::string_view name) const {
    const auto value = values_.find(name);
    if (value == values_.end()) throw Failure(Status::kServerError);
    return value->second;
  }

 private:
  std::map<std::string, std::int64_t, std::less<>> values_;
};

// Connections: the one figure whose peak the server keeps, since its start or FLUSH STATUS. The
// server reads current value and peak one after the other, so the peak may lag behind.
Gauge connections(const NamedValues& values) {
  const std::int64_t current = values["THREADS_CONNECTED"];
  return {.current = sql::clampUnsigned(current),
          .peak = sql::clampUnsigned(std::max(current, values["MAX_USED_CONNECTIONS"])),
          .maximum = sql::clampMaximum(values["MAX_CONNECTIONS"])};
}

// The threads of the pool, on servers that have one.
Gauge poolThreads(const NamedValues& values, sql::Peak& peak) {
  return peak.sample(values["THREADPOOL_THREADS"], values["THREAD_POOL_MAX_THREADS"]);
}

bool hasThreadPool(const NamedValues& values) { return values["x_thread_pool"] != 0; }

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

Communication CommunicationReader::read(sql::RowSource& rows, bool networking) {
  const NamedValues values(rows);
  Communication result;
  result.requests = sql::clampUnsigned(values.needed("QUESTIONS"));
  result.remoteSessions = tcpSessions_.sample(values["x_tcp_sessions"], values["MAX_CONNECTIONS"]);
  result.threads = hasThreadPool(values) ? poolThreads(values, poolThreads_) : connections(values);
  // The server counts every connection that ended without a formal close, including time-outs.
  result.timeouts = sql::clampUnsigned(values["ABORTED_CLIENTS"]);
  if (networking) {
    result.protocols.push_back({.code = kTcpIpProtocol,
                                .requests = sql::clampUnsigned(values["x_tcp_requests"]),
                                .currentSessions = result.remoteSessions.current,
                                .peakSessions = result.remoteSessions.peak});
  }
  return result;
}

}  // namespace tal::mariadb
