// Rows of a statement's result, as decoders read them: from a server, or from a test's table. The
// server is not trusted: a decoder must accept any text, any number and NULL in any column.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tal::sql {

// A result with a cursor that stands before the first row.
class RowSource {
 public:
  RowSource() = default;
  RowSource(const RowSource&) = delete;
  RowSource& operator=(const RowSource&) = delete;
  virtual ~RowSource() = default;

  // Moves to the next row; false if there is none.
  virtual bool next() = 0;
  // The text of a column (from 0) in the present row, nothing for NULL and for a column that the
  // result does not have. Valid until next() is called.
  [[nodiscard]] virtual std::optional<std::string_view> cell(std::size_t column) const = 0;
};

// A column as text; NULL is the empty text.
std::string text(const RowSource& row, std::size_t column);

// A column as a whole number. NULL is 0; a number that does not fit 64 bits becomes the nearest one
// that does. Throws Failure(kServerError) for a text that is not a whole number.
std::int64_t integer(const RowSource& row, std::size_t column);

// A column as a number of the interface: a number below 0 becomes 0, and one that does not fit 32
// bits the largest that does. Throws as integer() does.
std::uint32_t count(const RowSource& row, std::size_t column);

// The code of the word in a column, as a table of words and codes has it; nothing for another word.
template <typename Code, std::size_t size>
std::optional<Code> codeOf(const std::array<std::pair<std::string_view, Code>, size>& table,
                           const RowSource& row, std::size_t column) {
  const auto cell = row.cell(column);
  for (const auto& [word, code] : table) {
    if (cell == word) return code;
  }
  return std::nullopt;
}

}  // namespace tal::sql
