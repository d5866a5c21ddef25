// One session on a server, and statements in it.
#pragma once

#include <libpq-fe.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "tal/postgresql/answer_limit.h"
#include "tal/postgresql/statements.h"
#include "tal/sql/deadline.h"
#include "tal/sql/row.h"
#include "tal/status.h"

namespace tal::postgresql {

struct FinishConnection {
  void operator()(PGconn* connection) const { PQfinish(connection); }
};
using ConnectionHandle = std::unique_ptr<PGconn, FinishConnection>;

struct ClearResult {
  void operator()(PGresult* result) const { PQclear(result); }
};
using ResultHandle = std::unique_ptr<PGresult, ClearResult>;

// Owns a result that has arrived completely; reading it never waits.
class Result final : public sql::RowSource {
 public:
  explicit Result(ResultHandle result) : result_(std::move(result)) {}

  bool next() override;
  [[nodiscard]] std::optional<std::string_view> cell(std::size_t column) const override;

 private:
  ResultHandle result_;
  int row_ = -1;
};

// Whether a column is the server's "true"; NULL and everything else are false.
bool isTrue(const sql::RowSource& row, std::size_t column);

// Runs statements on a session that is logged in. Used by one thread at a time.
class Connection {
 public:
  explicit Connection(ConnectionHandle session);

  // As the server sent it at login: 150020 for 15.20.
  [[nodiscard]] int serverVersion() const { return serverVersion_; }

  // Who is logged in.
  [[nodiscard]] const std::string& user() const { return user_; }

  // Whether the session can still be used after a failure.
  [[nodiscard]] bool isOpen() const { return session_ != nullptr; }

  // Runs a statement, preparing it when it is new here; waits no longer than kStatementLimit and
  // `deadline`. Throws Failure: the first error of the server, kNoAnswer, kAnswerTooLarge, or
  // kServerError for an answer with other columns than the statement's. If no complete answer came,
  // and after kConnectionLost, the session is closed and every further call throws kConnectionLost.
  Result run(const Statement& statement, const sql::Deadline& deadline);

 private:
  void prepare(const Statement& statement, const sql::Deadline& deadline);
  ResultHandle execute(const Statement& statement, const sql::Deadline& deadline);
  ResultHandle collect(bool sent, const sql::Deadline& deadline);
  void flush(const sql::Deadline& deadline, AnswerLimit& limit);
  ResultHandle nextResult(const sql::Deadline& deadline, AnswerLimit& limit);
  [[nodiscard]] Status reasonOf(const PGresult* result) const;

  ConnectionHandle session_;
  int serverVersion_;
  std::string user_;
  std::set<std::string> prepared_;
};

}  // namespace tal::postgresql
