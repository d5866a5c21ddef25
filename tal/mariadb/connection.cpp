#include "tal/mariadb/connection.h"

#include <sys/socket.h>

#include <cstring>
#include <numeric>
#include <string>
#include <utility>

#include "tal/mariadb/errors.h"
#include "tal/mariadb/statements.h"
#include "tal/sql/limits.h"
#include "tal/sql/message.h"
#include "tal/status.h"
#include "tal/text.h"

namespace tal::mariadb {
namespace {

constexpr std::size_t kLongestWords = 500;

// The text of the server names the missing privilege and its purpose.
[[noreturn]] void failForPrivilege(MYSQL* session) {
  std::string words = mysql_error(session);
  fitText(words, kLongestWords);
  throw sql::ExplainedFailure(Status::kPrivilegeMissing, std::move(words));
}

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

void failAsSaid(MYSQL* session, const sql::Deadline& deadline) {
  const Status status = statusOf(mysql_errno(session));
  if (status == Status::kPrivilegeMissing) failForPrivilege(session);
  // The client library reports the end of an encrypted session as a failure of the encryption.
  const bool lost = status == Status::kConnectionLost || status == Status::kTlsFailed;
  if (lost && deadline.passed()) throw Failure(Status::kNoAnswer);
  throw Failure(lost ? Status::kConnectionLost : status);
}

Result::Result(MYSQL* session, MYSQL_RES* rows, const sql::Deadline& deadline)
    : session_(session), rows_(rows), deadline_(deadline) {}

Result::~Result() {
  if (rows_ == nullptr) return;
  if (mysql_eof(rows_) == 0) ::shutdown(mysql_get_socket(session_), SHUT_RDWR);
  mysql_free_result(rows_);
}

bool Result::next() {
  if (rows_ == nullptr) return false;
  row_ = mysql_fetch_row(rows_);
  lengths_ = row_ == nullptr ? nullptr : mysql_fetch_lengths(rows_);
  if (row_ == nullptr && mysql_errno(session_) != 0) failAsSaid(session_, deadline_);
  if (row_ != nullptr) count();
  return row_ != nullptr;
}

void Result::count() {
  ++rowCount_;
  byteCount_ = std::accumulate(lengths_, lengths_ + mysql_num_fields(rows_), byteCount_);
  if (rowCount_ > sql::kMostRows || byteCount_ > sql::kMostBytes) {
    throw Failure(Status::kAnswerTooLarge);
  }
}

std::optional<std::string_view> Result::cell(std::size_t column) const {
  if (row_ == nullptr || column >= mysql_num_fields(rows_) || row_[column] == nullptr) {
    return std::nullopt;
  }
  return std::string_view(row_[column], lengths_[column]);
}

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
