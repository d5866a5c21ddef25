#include "tal/sql/row.h"

#include <gtest/gtest.h>

#include <limits>

#include "tal/status.h"

namespace tal::sql {
namespace {

// One row with one column.
class Cell : public RowSource {
 public:
  explicit Cell(std::optional<std::string_view> value) : value_(value) {}

  bool next() override { return false; }
  [[nodiscard]] std::optional<std::string_view> cell(std::size_t column) const override {
    return column == 0 ? value_ : std::nullopt;
  }

 private:
  std::optional<std::string_view> value_;
};

TEST(RowTest, Text) {
  using namespace std::string_view_literals;

  EXPECT_EQ(text(Cell("a\0b"sv), 0), "a\0b"sv);
  EXPECT_EQ(text(Cell(std::nullopt), 0), "");
  EXPECT_EQ(text(Cell("a"), 1), "");
}

TEST(RowTest, Integer) {
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  struct Row {
    std::optional<std::string_view> text;
    std::int64_t value;
  };
  constexpr Row kRows[] = {
      {"0",                    0     },
      {"-7",                   -7    },
      {"007",                  7     },
      {std::nullopt,           0     },
      {"9223372036854775807",  kMost },
      {"9223372036854775808",  kMost },
      {"18446744073709551615", kMost },
      {"-9223372036854775808", kLeast},
      {"-9223372036854775809", kLeast},
  };

  for (const Row& row : kRows) {
    EXPECT_EQ(integer(Cell(row.text), 0), row.value) << row.text.value_or("NULL");
  }
}

TEST(RowTest, NoInteger) {
  for (const std::string_view text :
       {"", " ", " 1", "1 ", "+1", "-", "1.0", "1e3", "0x1", "NaN", "99999999999999999999x"}) {
    try {
      integer(Cell(text), 0);
      ADD_FAILURE() << text << " was taken";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.status(), Status::kServerError) << text;
    }
  }
}

TEST(RowTest, Count) {
  EXPECT_EQ(count(Cell("-1"), 0), 0U);
  EXPECT_EQ(count(Cell("4294967295"), 0), 4294967295U);
  EXPECT_EQ(count(Cell("4294967296"), 0), 4294967295U);
  EXPECT_EQ(count(Cell(std::nullopt), 0), 0U);
}

}  // namespace
}  // namespace tal::sql
