#include "tal/mariadb/session.h"

#include "tal/failure.h"
#include "tal/mariadb/statements.h"

namespace tal::mariadb {
namespace {

// The first version whose list of tablespaces tells their files.
constexpr std::int64_t kOldestVersion = 100600;

ServerFacts factsOf(Result account) {
  if (!account.next()) throw Failure(Status::kServerError);
  return {.innodbReadOnly = sql::integer(account, 0) != 0,
          .networking = sql::integer(account, 1) == 0,
          .ariaBlockSize = sql::integer(account, 2),
          .myisamBlockSize = sql::integer(account, 3)};
}

}  // namespace

Session::Session(const Location& location, const Credentials& credentials,
                 const Encryption& encryption, const sql::Deadline& call)
    : connection_(location, credentials, encryption, call.within(sql::kConnectLimit)) {
  if (!connection_.isMariaDb() || connection_.version() < kOldestVersion) {
    throw Failure(Status::kVersionNotSupported);
  }
  connection_.query(kSession, call);
  facts_ = factsOf(connection_.query(kAccount, call));
}

}  // namespace tal::mariadb
