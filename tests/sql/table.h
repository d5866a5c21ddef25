// Rows of a test's own, for whatever decodes the rows of a server.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tal/sql/row.h"

namespace testing_support {

using Cell = std::optional<std::string>;  // nothing is NULL

class Table : public tal::sql::RowSource {
 public:
  explicit Table(std::vector<std::vector<Cell>> rows) : rows_(std::move(rows)) {}

  bool next() override { return ++row_ <= rows_.size(); }
  [[nodiscard]] std::optional<std::string_view> cell(std::size_t column) const override {
    const std::vector<Cell>& row = rows_.at(row_ - 1);
    if (column >= row.size() || !row[column]) return {};
    return *row[column];
  }

 private:
  std::vector<std::vector<Cell>> rows_;
  std::size_t row_ = 0;
};

}  // namespace testing_support
