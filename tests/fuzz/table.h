// Rows of a server from an input: a line for each row, tabs between its cells, \N for NULL.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tal/status.h"
#include "tests/fuzz/lines.h"
#include "tests/fuzz/target.h"
#include "tests/sql/table.h"

namespace fuzzing {

using Rows = std::vector<std::vector<testing_support::Cell>>;

inline testing_support::Cell cellOf(std::string_view text) {
  if (text == "\\N") return {};
  return std::string(text);
}

inline Rows rowsOf(std::string_view lines) {
  Rows rows;
  for (const std::string_view line : split(lines, '\n')) {
    std::vector<testing_support::Cell>& row = rows.emplace_back();
    for (const std::string_view cell : split(line, '\t')) row.push_back(cellOf(cell));
  }
  return rows;
}

// What decoders refuse is refused as an answer of the server that cannot be read.
template <typename Decode>
void decode(const Decode& action) {
  try {
    action();
  } catch (const tal::Failure& failure) {
    require(failure.status() == tal::Status::kServerError, "bad rows are the server's error");
  }
}

}  // namespace fuzzing
