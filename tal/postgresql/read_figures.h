// Turns the row of usage.sql and that of communication.sql into figures. Each reader keeps the
// peaks of one connection, because the server keeps none, and throws Failure(kServerError) if there
// is no row or a number cannot be read.
#pragma once

#include <cstddef>

#include "tal/engine.h"
#include "tal/sql/figures.h"
#include "tal/sql/row.h"

namespace tal::postgresql {

inline constexpr std::size_t kUsageColumns = 12;

class UsageReader {
 public:
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

inline constexpr std::size_t kCommunicationColumns = 6;

class CommunicationReader {
 public:
  // The statistics have one protocol, TCP/IP.
  Communication read(sql::RowSource& rows);

 private:
  sql::Peak remoteSessions_;
  sql::Peak threads_;
};

}  // namespace tal::postgresql
