// Turns the rows of usage.sql and of communication.sql into figures. Each reader keeps the peaks of
// one connection that the server does not keep, and throws Failure(kServerError) if a figure is
// missing that every server has, or a number cannot be read.
#pragma once

#include "tal/engine.h"
#include "tal/sql/figures.h"
#include "tal/sql/row.h"

namespace tal::mariadb {

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

class CommunicationReader {
 public:
  // `networking`: whether the server listens to TCP; without it there is no protocol to report.
  Communication read(sql::RowSource& rows, bool networking);

 private:
  sql::Peak tcpSessions_;
  sql::Peak poolThreads_;
};

}  // namespace tal::mariadb
