// The rows that a statement gave.
#pragma once

#include <mysql.h>

#include <memory>
#include <optional>
#include <string_view>

#include "tal/sql/row.h"

namespace tal::mariadb {

// Owns a result that is wholly on this side; reading it waits for nobody.
class Result final : public sql::RowSource {
 public:
  // `rows` may be null: a statement that gives no rows.
  explicit Result(MYSQL_RES* rows) : rows_(rows) {}

  bool next() override;
  [[nodiscard]] std::optional<std::string_view> cell(std::size_t column) const override;

 private:
  struct Release {
    void operator()(MYSQL_RES* rows) const noexcept { mysql_free_result(rows); }
  };

  std::unique_ptr<MYSQL_RES, Release> rows_;
  MYSQL_ROW row_ = nullptr;
  const unsigned long* lengths_ = nullptr;
};

}  // namespace tal::mariadb
