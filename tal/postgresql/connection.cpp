#include "tal/postgresql/connection.h"

#include <poll.h>

#include <cstdint>

#include "tal/postgresql/answer_limit.h"
#include "tal/postgresql/errors.h"
#include "tal/sql/deadline.h"
#include "tal/sql/limits.h"
#include "tal/status.h"

namespace tal::postgresql {
namespace {

bool isError(const PGresult* result) {
  const ExecStatusType status = PQresultStatus(result);
  return status != PGRES_TUPLES_OK && status != PGRES_COMMAND_OK;
}

// Such a result comes again and again until the copying is over; no statement of ours copies.
bool isCopy(const PGresult* result) {
  const ExecStatusType status = PQresultStatus(result);
  return status == PGRES_COPY_IN || status == PGRES_COPY_OUT || status == PGRES_COPY_BOTH;
}

std::uint64_t bytesIn(const PGresult* result) {
  std::uint64_t bytes = 0;
  for (int row = 0; row < PQntuples(result); ++row) {
    for (int column = 0; column < PQnfields(result); ++column) {
      bytes += static_cast<std::uint64_t>(PQgetlength(result, row, column));
    }
  }
  return bytes;
}

// The bytes that arrive during a read of a local socket are not seen before the answer is whole.
bool isTooLarge(const PGresult* result) {
  return PQresultMemorySize(result) > sql::kMostBytes && bytesIn(result) > sql::kMostBytes;
}

// An answer with other columns or too many rows is not decoded.
void checkShape(const PGresult* result, const Statement& statement) {
  if (static_cast<std::size_t>(PQnfields(result)) != statement.columns) {
    throw Failure(Status::kServerError);
  }
  if (static_cast<std::size_t>(PQntuples(result)) > sql::kMostRows || isTooLarge(result)) {
    throw Failure(Status::kAnswerTooLarge);
  }
}

}  // namespace

Connection::Connection(ConnectionHandle session)
    : session_(std::move(session)),
      serverVersion_(PQserverVersion(session_.get())),
      user_(PQuser(session_.get())) {
  // A server that no longer reads must not block the sending.
  PQsetnonblocking(session_.get(), 1);
}

Result Connection::run(const Statement& statement, const sql::Deadline& deadline) {
  if (!session_) throw Failure(Status::kConnectionLost);
  const sql::Deadline limit = deadline.within(sql::kStatementLimit);
  try {
    if (!prepared_.contains(statement.name)) prepare(statement, limit);
    ResultHandle result = execute(statement, limit);
    checkShape(result.get(), statement);
    return Result(std::move(result));
  } catch (const Failure& failure) {
    // The rest of an answer would be taken for the next answer. A server that sends too much is
    // not asked again.
    const bool isAnswered = PQtransactionStatus(session_.get()) == PQTRANS_IDLE;
    const bool isOver =
        failure.status() == Status::kConnectionLost || failure.status() == Status::kAnswerTooLarge;
    if (!isAnswered || isOver) session_.reset();
    throw;
  }
}

void Connection::prepare(const Statement& statement, const sql::Deadline& deadline) {
  const int sent =
      PQsendPrepare(session_.get(), statement.name, statement.text.c_str(), 0, nullptr);
  collect(sent == 1, deadline);
  prepared_.insert(statement.name);
}

ResultHandle Connection::execute(const Statement& statement, const sql::Deadline& deadline) {
  const int sent =
      PQsendQueryPrepared(session_.get(), statement.name, 0, nullptr, nullptr, nullptr, 0);
  return collect(sent == 1, deadline);
}

// The first error is the server's own; those that follow it say only that the session is gone.
ResultHandle Connection::collect(bool sent, const sql::Deadline& deadline) {
  if (!sent) throw Failure(reasonOf(nullptr));
  AnswerLimit limit(session_.get());
  flush(deadline, limit);

  ResultHandle kept;
  while (ResultHandle result = nextResult(deadline, limit)) {
    if (isCopy(result.get())) throw Failure(Status::kServerError);
    if (deadline.passed()) throw Failure(Status::kNoAnswer);
    if (!kept || !isError(kept.get())) kept = std::move(result);
  }
  if (!kept || isError(kept.get())) throw Failure(reasonOf(kept.get()));
  return kept;
}

void Connection::flush(const sql::Deadline& deadline, AnswerLimit& limit) {
  for (;;) {
    const int pending = PQflush(session_.get());
    // If sending fails, reading the answer gives the reason.
    if (pending <= 0) return;
    sql::waitForSocket(PQsocket(session_.get()), POLLIN | POLLOUT, deadline);
    limit.check();
    if (PQconsumeInput(session_.get()) == 0) return;
  }
}

ResultHandle Connection::nextResult(const sql::Deadline& deadline, AnswerLimit& limit) {
  while (PQisBusy(session_.get()) == 1) {
    sql::waitForSocket(PQsocket(session_.get()), POLLIN, deadline);
    limit.check();
    if (PQconsumeInput(session_.get()) == 0) break;
  }
  return ResultHandle(PQgetResult(session_.get()));
}

Status Connection::reasonOf(const PGresult* result) const {
  if (PQstatus(session_.get()) == CONNECTION_BAD) return Status::kConnectionLost;
  const char* const sqlState = PQresultErrorField(result, PG_DIAG_SQLSTATE);
  return statusOf(sqlState != nullptr ? sqlState : "");
}

bool Result::next() { return ++row_ < PQntuples(result_.get()); }

std::optional<std::string_view> Result::cell(std::size_t column) const {
  const auto count = static_cast<std::size_t>(PQnfields(result_.get()));
  const int number = static_cast<int>(column);
  if (column >= count || PQgetisnull(result_.get(), row_, number) == 1) return {};
  return std::string_view(PQgetvalue(result_.get(), row_, number),
                          static_cast<std::size_t>(PQgetlength(result_.get(), row_, number)));
}

bool isTrue(const sql::RowSource& row, std::size_t column) { return row.cell(column) == "t"; }

}  // namespace tal::postgresql
