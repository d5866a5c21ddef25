// Figures that a statement returns as rows of a name and a number, and two gauges that several
// sections use.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "tal/engine.h"
#include "tal/sql/numbers.h"
#include "tal/sql/peak.h"
#include "tal/sql/row.h"
#include "tal/status.h"

namespace tal::mariadb {

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
