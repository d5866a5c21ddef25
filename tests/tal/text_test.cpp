#include "tal/text.h"

#include <gtest/gtest.h>

namespace tal {
namespace {

using namespace std::string_literals;

struct Case {
  const char* name;
  std::string text;
  std::size_t limit;
  std::string expected;
};

const std::vector<Case>& cases() {
  static const std::vector<Case> kCases = {
      {"Empty",                    "",                                     4,  ""                  },
      {"Fitting",                  "abcd",                                 4,  "abcd"              },
      {"OneTooMany",               "abcde",                                4,  "abcd"              },
      {"NoRoom",                   "abc",                                  0,  ""                  },
      {"TwoBytesFit",              "abc\u00fc",                            5,  "abc\u00fc"         },
      {"TwoBytesCut",              "abc\u00fc",                            4,  "abc"               },
      {"ThreeBytesFit",            "a\u20ac",                              4,  "a\u20ac"           },
      {"ThreeBytesCut",            "a\u20ac",                              3,  "a"                 },
      {"FourBytesFit",             "\U0001F600",                           4,  "\U0001F600"        },
      {"FourBytesCut",             "\U0001F600",                           3,  ""                  },
      {"NothingAfterTheCut",       "a\u20acb",                             3,  "a"                 },
      {"NotUtf8Unchanged",         "a\xff\xa0\xe2\xbfz",                   16, "a\xff\xa0\xe2\xbfz"},
      {"NotUtf8CutAnywhere",       "\xe2\xa2\xe2\xa2",                     3,  "\xe2\xa2\xe2"      },
      {"LoneLeadAtTheEnd",         "ab\xc3",                               3,  "ab\xc3"            },
      {"OverlongIsNotUtf8",        "\xc0\x8a",                             4,  "\xc0?"             },
      {"SurrogateIsNotUtf8",       "\xed\xa0\x80",                         2,  "\xed\xa0"          },
      {"OverlongOfThreeIsNotUtf8", "\xe0\x82\x9b",                         2,  "\xe0?"             },
      {"OverlongOfFourIsNotUtf8",  "\xf0\x80\x82\x9b",                     3,  "\xf0??"            },
      {"BeyondTheLastIsNotUtf8",   "\xf4\x90\x80\x80",                     3,  "\xf4??"            },
      {"TheLastCharacter",         "\xf4\x8f\xbf\xbf",                     3,  ""                  },
      {"LineEnds",                 "a\r\nb\tc",                            16, "a??b?c"            },
      {"Nul",                      "a\0b"s,                                16, "a?b"               },
      {"Escape",                   "\x1b[31m",                             16, "?[31m"             },
      {"Delete",                   "a\x7f",                                16, "a?"                },
      {"LastBelowBlank",           "\x1f \x7e",                            16, "? \x7e"            },
      {"FirstC1",                  "a\xc2\x80z",                           16, "a?z"               },
      {"LastC1",                   "a\xc2\x9fz",                           16, "a?z"               },
      {"BehindC1",                 "a\xc2\xa0z",                           16, "a\xc2\xa0z"        },
      {"C1NeedsOneByte",           "abc\xc2\x9b",                          4,  "abc?"              },
      {"RawC1",                    "a\x80z\x9f\xa0",                       16, "a?z?\xa0"          },
      {"BeforeNoWidth",            "\u200a\u200c",                         16, "\u200a\u200c"      },
      {"NoWidth",                  "a\u200bz\ufeff",                       16, "a?z?"              },
      {"AroundNoWidth",            "\ufefe\uff00",                         16, "\ufefe\uff00"      },
      {"LineSeparators",           "\u2027\u2028\u2029",                   16, "\u2027??"          },
      {"Direction",                "\u202a\u202b\u202c\u202d\u202e\u202f", 16, "?????\u202f"       },
      {"Isolates",                 "\u2065\u2066\u2067\u2068\u2069\u206a", 16, "\u2065????\u206a"  },
      {"DirectionNeedsOneByte",    "abc\u202e",                            4,  "abc?"              },
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
