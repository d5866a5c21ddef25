// Owners of what the client library allocates.
#pragma once

#include <libpq-fe.h>

#include <memory>

namespace tal::postgresql {

struct FinishConnection {
  void operator()(PGconn* connection) const { PQfinish(connection); }
};
using ConnectionHandle = std::unique_ptr<PGconn, FinishConnection>;

struct ClearResult {
  void operator()(PGresult* result) const { PQclear(result); }
};
using ResultHandle = std::unique_ptr<PGresult, ClearResult>;

}  // namespace tal::postgresql
