#include "tal/mariadb/result.h"

#include <sys/socket.h>

#include <numeric>
#include <string>
#include <utility>

#include "tal/mariadb/errors.h"
#include "tal/sql/explained_failure.h"
#include "tal/sql/limits.h"
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

}  // namespace tal::mariadb
