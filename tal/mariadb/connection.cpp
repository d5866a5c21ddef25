#include "tal/mariadb/connection.h"

#include <cstring>
#include <utility>

#include "tal/mariadb/statements.h"
#include "tal/status.h"

namespace tal::mariadb {
namespace {

// The first version whose list of tablespaces includes the names of the files.
constexpr std::int64_t kOldestVersion = 100600;

ServerFacts factsOf(Result account) {
  if (!account.next()) throw Failure(Status::kServerError);
  ServerFacts facts{.performanceSchema = sql::integer(account, 4) != 0,
                    .metadataLocks = sql::integer(account, 5) != 0,
                    .innodbReadOnly = sql::integer(account, 0) != 0,
                    .networking = sql::integer(account, 1) == 0,
                    .ariaBlockSize = sql::integer(account, 2),
                    .myisamBlockSize = sql::integer(account, 3)};
  while (account.next()) continue;
  return facts;
}

}  // namespace

Connection::Connection(SessionHandle session) : session_(std::move(session)) {
  const bool isMariaDb = mariadb_connection(session_.get()) != 0;
  if (!isMariaDb || version() < kOldestVersion) throw Failure(Status::kVersionNotSupported);
  run(kSession);
  facts_ = factsOf(run(kAccount));
}

Result Connection::run(const char* statement) {
  const sql::Deadline deadline(sql::kStatementLimit);
  MYSQL* const session = session_.get();
  if (mysql_real_query(session, statement, std::strlen(statement)) != 0) {
    failAsSaid(session, deadline);
  }
  MYSQL_RES* const rows = mysql_use_result(session);
  if (rows == nullptr && mysql_errno(session) != 0) failAsSaid(session, deadline);
  return Result(session, rows, deadline);
}

std::int64_t Connection::id() const {
  return static_cast<std::int64_t>(mysql_thread_id(session_.get()));
}

std::int64_t Connection::version() const {
  return static_cast<std::int64_t>(mysql_get_server_version(session_.get()));
}

}  // namespace tal::mariadb
