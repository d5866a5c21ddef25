// Figures that a statement gives as rows of a name and a number.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "tal/failure.h"
#include "tal/sql/row.h"

namespace tal::mariadb {

class NamedValues {
 public:
  explicit NamedValues(sql::RowSource& rows) {
    while (rows.next()) values_[sql::text(rows, 0)] = sql::integer(rows, 1);
  }

  // 0 for a figure that the server does not have.
  [[nodiscard]] std::int64_t operator[](std::string_view name) const {
    const auto value = values_.find(name);
    return value == values_.end() ? 0 : value->second;
  }

  // Throws Failure(kServerError) for a figure that every server has and this answer lacks: an
  // answer without rows must not look like a server that does nothing.
  [[nodiscard]] std::int64_t needed(std::string_view name) const {
    const auto value = values_.find(name);
    if (value == values_.end()) throw Failure(Status::kServerError);
    return value->second;
  }

 private:
  std::map<std::string, std::int64_t, std::less<>> values_;
};

}  // namespace tal::mariadb
