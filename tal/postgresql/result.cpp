#include "tal/postgresql/result.h"

namespace tal::postgresql {

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
