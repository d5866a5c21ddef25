// Turns the row of usage.sql into resource usage.
#pragma once

#include <cstddef>

#include "tal/engine.h"
#include "tal/sql/peak.h"
#include "tal/sql/row.h"

namespace tal::postgresql {

inline constexpr std::size_t kUsageColumns = 12;

// Keeps the peaks of one connection, because the server keeps none.
class UsageReader {
 public:
  // The usage in the first row. Throws Failure(kServerError) if there is no row or a number cannot
  // be read.
  Usage read(sql::RowSource& rows);

 private:
  sql::Peak users_;
  sql::Peak files_;
  sql::Peak handles_;
  sql::Peak transactions_;
  sql::Peak clients_;
  sql::Peak workerThreads_;
  sql::Peak locks_;
  sql::Peak dataMb_;
  sql::Peak sessions_;
};

}  // namespace tal::postgresql
