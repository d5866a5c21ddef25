#include "tal/mariadb/result.h"

namespace tal::mariadb {

bool Result::next() {
  if (!rows_) return false;
  row_ = mysql_fetch_row(rows_.get());
  lengths_ = row_ == nullptr ? nullptr : mysql_fetch_lengths(rows_.get());
  return row_ != nullptr;
}

std::optional<std::string_view> Result::cell(std::size_t column) const {
  if (row_ == nullptr || column >= mysql_num_fields(rows_.get()) || row_[column] == nullptr) {
    return std::nullopt;
  }
  return std::string_view(row_[column], lengths_[column]);
}

}  // namespace tal::mariadb
