// Owners for the objects of the client library, and the rows of a result.
#pragma once

#include <libpq-fe.h>

#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "tal/sql/row.h"

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

}  // namespace tal::postgresql
