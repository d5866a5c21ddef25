// Resource usage.
#pragma once

#include "tal/engine.h"
#include "tal/sql/peak.h"
#include "tal/sql/row.h"

namespace tal::mariadb {

// Reads the figures of usage.sql, and keeps the peaks that the server does not keep.
class UsageReader {
 public:
  Usage read(sql::RowSource& rows);

 private:
  sql::Peak files_;
  sql::Peak handles_;
  sql::Peak transactions_;
  sql::Peak workerThreads_;
  sql::Peak locks_;
  sql::Peak dataMb_;
};

}  // namespace tal::mariadb
