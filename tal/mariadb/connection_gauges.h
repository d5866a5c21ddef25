// The two gauges that several sections show.
#pragma once

#include <algorithm>

#include "tal/engine.h"
#include "tal/mariadb/named_values.h"
#include "tal/sql/numbers.h"
#include "tal/sql/peak.h"

namespace tal::mariadb {

// Connections: the one figure whose peak the server keeps, since its start or FLUSH STATUS. Its
// parts are read one after another, so that the peak may lag behind.
inline Gauge connections(const NamedValues& values) {
  const std::int64_t current = values["THREADS_CONNECTED"];
  return {.current = sql::clampUnsigned(current),
          .peak = sql::clampUnsigned(std::max(current, values["MAX_USED_CONNECTIONS"])),
          .maximum = sql::clampMaximum(values["MAX_CONNECTIONS"])};
}

// The threads of the pool, on servers that have one.
inline Gauge poolThreads(const NamedValues& values, sql::Peak& peak) {
  return peak.sample(values["THREADPOOL_THREADS"], values["THREAD_POOL_MAX_THREADS"]);
}

inline bool hasThreadPool(const NamedValues& values) { return values["x_thread_pool"] != 0; }

}  // namespace tal::mariadb
