#include "tal/text.h"

#include <gtest/gtest.h>

namespace tal {
namespace {

struct Case {
  const char* name;
  std::string text;
  std::size_t limit;
  std::string expected;
};

const std::vector<Case>& cases() {
  static const std::vector<Case> kCases = {
      {"Empty",                    "",                   4,        ""                             },
      {"Fitting",                  "abcd",               4,        "abcd"                         },
      {"OneTooMany",               "abcde",              4,        "abcd"                         },
      {"NoRoom",                   "abc",                0,        ""                             },
      {"TwoBytesFit",              "abc\u00fc",          5,        "abc\u00fc"                    },
      {"TwoBytesCut",              "abc\u00fc",          4,        "abc"                          },
      {"ThreeBytesFit",            "a\u20ac",            4,        "a\u20ac"                      },
      {"ThreeBytesCut",            "a\u20ac",            3,        "a"                            },
      {"FourBytesFit",             "\U0001F600",         4,        "\U0001F600"                   },
      {"FourBytesCut",             "\U0001F600",         3,        ""                             },
      {"NothingAfterTheCut",       "a\u20acb",           3,        "a"                            },
      {"NotUtf8Unchanged",         "a\xff\x80\xe2\x82z", 16,       "a\xff\x80\xe2\x82z"           },
      {"NotUtf8CutAnywhere",       "\xe2\x82\xe2\x82",   3,        "\xe2\x82\xe2"                 },
      {"LoneLeadAtTheEnd",         "ab\xc3",             3,        "ab\xc3"                       },
      {"OverlongIsNotUtf8",        "\xc0\x8a",           4,        "\xc0\x8a"                     },
      {"SurrogateIsNotUtf8",       "\xed\xa0\x80",       2,        "\xed\xa0"                     },
      {"OverlongOfThreeIsNotUtf8", "\xe0\x82\x9b",       2,        "\xe0\x82"                     },
      {"OverlongOfFourIsNotUtf8",  "\xf0\x80\x82\x9b",   3,        "\xf0\x80\x82"                 },
      {"BeyondTheLastIsNotUtf8",   "\xf4\x90\x80\x80",   3,        "\xf4\x90\x80"                 },
      {"TheLastCharacter",         "\xf4\x8f\xbf\xbf",   3,        ""                             },
      {"LineEnds",                 "a\r\nb\tc",          16,       "a??b?c"                       },
      {"Nul",                      std::string("a\0b",   3),       16,                              "a?b"},
      {"Escape",                          "\x1b[31m",                                       16,            "?[31m"  },
      {"Delete",                          "a\x7f",                                       16,               "a?"   },
      {"LastBelowBlank",                          "\x1f \x7e",                               16,   "? \x7e"},
      {"FirstC1",                          "a\xc2\x80z",                                      16,         "a?z"  },
      {"LastC1",                          "a\xc2\x9fz",                                       16,          "a?z"},
      {"BehindC1",                          "a\xc2\xa0z",                                     16,        "a\xc2\xa0z"  },
      {"C1NeedsOneByte",                          "abc\xc2\x9b",                               4, "abc?"},
      {"RawC1IsNotUtf8",                          "a\x9bz",                               16,      "a\x9bz"      },
  };
  return kCases;
}

TEST(Text, IsCleanedAndCutIntoItsField) {
  for (const Case& each : cases()) {
    std::vector<char> field(each.limit + 3, 'x');

    const std::size_t length = putText({field.data(), each.limit + 1}, each.text);

    EXPECT_EQ(std::string(field.data(), length), each.expected) << each.name;
    EXPECT_EQ(field[length], '\0') << each.name;
    EXPECT_EQ(std::string(field.end() - 2, field.end()), "xx") << each.name;
  }
}

TEST(Text, IsCleanedAndCutInPlace) {
  for (const Case& each : cases()) {
    std::string text = each.text;

    fitText(text, each.limit);

    EXPECT_EQ(text, each.expected) << each.name;
  }
}

}  // namespace
}  // namespace tal
