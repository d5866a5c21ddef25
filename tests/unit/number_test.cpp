#include "orv/Parsing.h"

#include <gtest/gtest.h>

#include <climits>
#include <string_view>

#include "tests/unit/printing.h"

namespace {

using orv::Number;
using orv::String;
using namespace std::string_view_literals;

TEST(Number, ReadsASignAndDigits) {
  struct Case {
    const char* text;
    int value;
  };
  constexpr Case kCases[] = {
      {"0",           0      },
      {"7",           7      },
      {"+7",          7      },
      {"-7",          -7     },
      {"007",         7      },
      {"2147483647",  INT_MAX},
      {"-2147483648", INT_MIN},
  };

  for (const Case& number : kCases) {
    EXPECT_EQ(Number::parseInt(number.text), number.value) << number.text;
    EXPECT_EQ(Number::parseLong(number.text), number.value) << number.text;
  }
}

TEST(Number, GivesZeroForAnythingElse) {
  constexpr std::string_view kNoNumbers[] = {
      ""sv,   " "sv,   "+"sv,   "-"sv,   "+-1"sv, "-+1"sv, "--1"sv,          "1 "sv,       " 1"sv,
      "1x"sv, "x1"sv,  "0x1"sv, "1.0"sv, "1e3"sv, "1,0"sv, "\xD9\xA1"sv,     "1\xFF"sv,    "1\0"sv,
      "\0"sv, "+ 1"sv, "1-"sv,  "1\n"sv, "inf"sv, "nan"sv, "\xEF\xBC\x91"sv, "\xC2\xB9"sv, "+/"sv,
      "+:"sv,
  };

  for (const std::string_view text : kNoNumbers) {
    EXPECT_EQ(Number::parseInt(String(text)), 0) << ::testing::PrintToString(text);
    EXPECT_EQ(Number::parseLong(String(text)), 0L) << ::testing::PrintToString(text);
  }
}

TEST(Number, GivesZeroForWhatDoesNotFit) {
  EXPECT_EQ(Number::parseInt("2147483648"), 0);
  EXPECT_EQ(Number::parseInt("-2147483649"), 0);
  EXPECT_EQ(Number::parseInt("4294967297"), 0);
  EXPECT_EQ(Number::parseLong("4294967297"), 4294967297L);
  EXPECT_EQ(Number::parseLong("9223372036854775807"), LONG_MAX);
  EXPECT_EQ(Number::parseLong("-9223372036854775808"), LONG_MIN);
  EXPECT_EQ(Number::parseLong("9223372036854775808"), 0L);
  EXPECT_EQ(Number::parseLong("18446744073709551617"), 0L);
}

}  // namespace
