// Communication statistics.
#pragma once

#include "tal/engine.h"
#include "tal/sql/peak.h"
#include "tal/sql/row.h"

namespace tal::mariadb {

// Reads the figures of communication.sql, and keeps the peaks that the server does not keep.
class CommunicationReader {
 public:
  // `networking`: whether the server listens to TCP; without it there is no protocol to report.
  Communication read(sql::RowSource& rows, bool networking);

 private:
  sql::Peak tcpSessions_;
  sql::Peak poolThreads_;
};

}  // namespace tal::mariadb
