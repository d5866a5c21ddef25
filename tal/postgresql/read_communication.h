// Turns the row of communication.sql into communication statistics.
#pragma once

#include <cstddef>

#include "tal/engine.h"
#include "tal/sql/peak.h"
#include "tal/sql/row.h"

namespace tal::postgresql {

inline constexpr std::size_t kCommunicationColumns = 6;

// Keeps the peaks of one connection, because the server keeps none.
class CommunicationReader {
 public:
  // The statistics in the first row, with one protocol, TCP/IP. Throws Failure(kServerError) if
  // there is no row or a number cannot be read.
  Communication read(sql::RowSource& rows);

 private:
  sql::Peak remoteSessions_;
  sql::Peak threads_;
};

}  // namespace tal::postgresql
