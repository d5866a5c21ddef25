// One session on a server, and statements in it.
#pragma once

#include <mysql.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "tal/sql/deadline.h"
#include "tal/sql/row.h"

namespace tal::mariadb {

struct CloseSession {
  void operator()(MYSQL* session) const noexcept { mysql_close(session); }
};
using SessionHandle = std::unique_ptr<MYSQL, CloseSession>;

// Throws the Failure for the error that the client library reports. It is kNoAnswer instead of
// kConnectionLost if `deadline` has passed.
[[noreturn]] void failAsSaid(MYSQL* session, const sql::Deadline& deadline);

// The rows of a statement, read from the session one by one. next() throws Failure as failAsSaid()
// does, and kAnswerTooLarge for an answer above sql::kMostRows or sql::kMostBytes. A result that is
// destroyed before its last row cuts the session's socket, because the rest could be endless.
class Result final : public sql::RowSource {
 public:
  // `rows` is null for a statement that returns no rows. `session` must outlive this object.
  Result(MYSQL* session, MYSQL_RES* rows, const sql::Deadline& deadline);
  ~Result() override;

  bool next() override;
  [[nodiscard]] std::optional<std::string_view> cell(std::size_t column) const override;

 private:
  void count();

  MYSQL* session_;
  MYSQL_RES* rows_;
  sql::Deadline deadline_;
  MYSQL_ROW row_ = nullptr;
  const unsigned long* lengths_ = nullptr;
  std::size_t rowCount_ = 0;
  std::uint64_t byteCount_ = 0;
};

// What the server said of itself at the login.
struct ServerFacts {
  bool performanceSchema = false;
  bool metadataLocks = false;  // whether it lists them, which needs the performance schema
  bool innodbReadOnly = false;
  bool networking = true;  // whether the server listens to TCP at all
  std::int64_t ariaBlockSize = 0;
  std::int64_t myisamBlockSize = 0;
};

// Runs statements on a session that is logged in. The session is read-only, limits the time of its
// statements, and belongs to an account that may see everything that is reported. Used by one
// thread at a time.
class Connection {
 public:
  // Prepares the session for monitoring. Throws Failure: kVersionNotSupported for a server that is
  // too old or not MariaDB; kPrivilegeMissing if the account lacks PROCESS, because the server
  // would show only the account's own sessions and look idle.
  explicit Connection(SessionHandle session);

  // Runs a statement. Read its rows before you run the next one. If the server is silent for
  // sql::kStatementLimit, the session ends. With encryption only the limit of the whole call
  // applies. Throws Failure.
  Result run(const char* statement);

  // The number of the session on the server, as in its process list and in KILL.
  [[nodiscard]] std::int64_t id() const;
  // 101119 for version 10.11.19.
  [[nodiscard]] std::int64_t version() const;
  [[nodiscard]] const ServerFacts& facts() const { return facts_; }

 private:
  SessionHandle session_;
  ServerFacts facts_;
};

}  // namespace tal::mariadb
