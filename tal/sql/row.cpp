#include "tal/sql/row.h"

#include <charconv>
#include <limits>

#include "tal/sql/figures.h"
#include "tal/status.h"

namespace tal::sql {

std::string text(const RowSource& row, std::size_t column) {
  return std::string(row.cell(column).value_or(std::string_view{}));
}

std::int64_t integer(const RowSource& row, std::size_t column) {
  const auto cell = row.cell(column);
  if (!cell) return 0;

  std::int64_t value = 0;
  const char* const last = cell->data() + cell->size();
  const auto [end, error] = std::from_chars(cell->data(), last, value);
  if (error == std::errc::invalid_argument || end != last) throw Failure(Status::kServerError);
  if (error == std::errc{}) return value;
  return cell->front() == '-' ? std::numeric_limits<std::int64_t>::min()
                              : std::numeric_limits<std::int64_t>::max();
}

std::uint32_t count(const RowSource& row, std::size_t column) {
  return clampUnsigned(integer(row, column));
}

}  // namespace tal::sql
