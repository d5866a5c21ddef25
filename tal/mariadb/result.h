// Owners for the objects of the client library.
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

}  // namespace tal::mariadb
