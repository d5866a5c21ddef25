#include "util/Utils.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <string_view>
#include <vector>

#include "tests/unit/printing.h"

namespace {

using orv::String;
using namespace std::string_view_literals;

TEST(Utils, ParsesNumbersBetweenBlanks) {
  struct Case {
    const char* text;
    int value;
  };
  constexpr Case kCases[] = {
      {"0",           0      },
      {" 42\r\n",     42     },
      {"\t\r\n 0 \t", 0      },
      {"+5",          5      },
      {"-5",          -5     },
      {"007",         7      },
      {"2147483647",  INT_MAX},
      {"-2147483648", INT_MIN},
  };

  for (const Case& number : kCases) {
    EXPECT_EQ(Utils::parseInt(number.text), number.value) << number.text;
    EXPECT_EQ(Utils::parseLong(number.text), number.value) << number.text;
  }
}

TEST(Utils, RefusesWhatIsNoNumberAndOtherSpellingsOfZero) {
  constexpr std::string_view kRefused[] = {
      ""sv,     " \t\r\n"sv, "00"sv,    "+0"sv,  "-0"sv,       "0.0"sv,
      "abc"sv,  "12abc"sv,   "abc12"sv, "+"sv,   "-"sv,        "1 2"sv,
      "0x10"sv, "\v7"sv,     "0\0"sv,   "1,0"sv, "\xD9\xA1"sv, "99999999999999999999"sv,
  };

  for (const std::string_view text : kRefused) {
    EXPECT_THROW(Utils::parseInt(String(text)), NumberFormatException)
        << ::testing::PrintToString(text);
    EXPECT_THROW(Utils::parseLong(String(text)), NumberFormatException)
        << ::testing::PrintToString(text);
  }
}

TEST(Utils, RefusesNumbersThatDoNotFit) {
  EXPECT_THROW(Utils::parseInt("2147483648"), NumberFormatException);
  EXPECT_THROW(Utils::parseInt("-2147483649"), NumberFormatException);
  EXPECT_EQ(Utils::parseLong("-2147483649"), -2147483649L);
  EXPECT_EQ(Utils::parseLong("9223372036854775807"), LONG_MAX);
  EXPECT_THROW(Utils::parseLong("9223372036854775808"), NumberFormatException);
}

TEST(Utils, DescribesNoNumberFormatException) {
  try {
    Utils::parseInt("x");
    FAIL() << "nothing was thrown";
  } catch (const orv::Exception& exception) {
    EXPECT_EQ(exception.getDescription(), "");
    EXPECT_EQ(exception.getResult(), 0);
  }
}

TEST(Utils, RemovesTabsAlone) {
  struct Case {
    const char* text;
    const char* expected;
  };
  constexpr Case kCases[] = {
      {"",               ""            },
      {"\t",             ""            },
      {"\t\ta\t b\t",    "a b"         },
      {" a\n\r\v",       " a\n\r\v"    },
      {"\xE2\x82\xAC\t", "\xE2\x82\xAC"},
  };

  for (const Case& row : kCases) {
    String text(row.text);
    Utils::removeTabChars(text);
    EXPECT_EQ(text, row.expected);
  }
}

TEST(Utils, RemovesTabsFromALongText) {
  String text;
  for (int i = 0; i < 500000; ++i) text += "\ta";

  Utils::removeTabChars(text);

  EXPECT_EQ(text, String(std::string(500000, 'a')));
}

// Comments count the length on entry: what lies beyond it is not escaped.
TEST(Utils, EscapesWithinTheLengthOnEntry) {
  struct Case {
    const char* text;
    char character;
    const char* expected;
  };
  constexpr Case kCases[] = {
      {"",              '\\', ""                },
      {"abc",           '\\', "abc"             },
      {R"(\)",          '\\', R"(\\)"           },
      {R"(\\)",         '\\', R"(\\\)"          }, // 2
      {R"(\\\)",        '\\', R"(\\\\\)"        }, // 3
      {R"(a\b\c)",      '\\', R"(a\\b\\c)"      }, // 5
      {R"(a\b\c\)",     '\\', R"(a\\b\\c\)"     }, // 6
      {R"(C:\d\e\f\g)", '\\', R"(C:\\d\\e\\f\g)"}, // 10
      {R"("")",         '"',  R"(\"")"          },
      {R"("a")",        '"',  R"(\"a")"         },
      {R"("a"bc)",      '"',  R"(\"a\"bc)"      },
      {"xxxx",          'x',  "\\x\\xxx"        },
      {"\xC3\xA4\"",    '"',  "\xC3\xA4\\\""    }, // counted in characters
  };

  for (const Case& row : kCases) {
    String text(row.text);
    Utils::addBackslashChars(text, row.character);
    EXPECT_EQ(text, row.expected) << row.text;
  }
}

// The same by insertions one at a time.
std::string escapedByInsertion(std::string text, char character) {
  const std::size_t length = text.size();
  for (std::size_t i = 0; i < length; ++i) {
    if (text[i] == character) text.insert(i++, 1, '\\');
  }
  return text;
}

TEST(Utils, EscapesEveryShortTextAsInsertionsDo) {
  constexpr std::string_view kLetters = "\\\"a";
  for (unsigned number = 0; number < 2187; ++number) {
    for (std::size_t length = 0; length <= 7; ++length) {
      std::string bytes;
      unsigned rest = number;
      for (std::size_t i = 0; i < length; ++i, rest /= 3) bytes.push_back(kLetters[rest % 3]);

      for (const char character : {'\\', '"'}) {
        String text(bytes);
        Utils::addBackslashChars(text, character);
        ASSERT_EQ(text.toBytes(), escapedByInsertion(bytes, character)) << bytes;
      }
    }
  }
}

TEST(Utils, NeverFindsACharacterAbove127) {
  const String before(std::wstring{0x80, 0xE4, 0xFF, 0xDC80, 0xDCE4, 0xDCFF});

  for (const char character : {'\x80', '\xE4', '\xFF'}) {
    String text = before;
    Utils::addBackslashChars(text, character);
    EXPECT_EQ(text, before);
  }
}

// Takes minutes if the text is moved for each insertion.
TEST(Utils, EscapesALongTextInLinearTime) {
  constexpr std::size_t kLength = 1000000;
  String text(std::string(kLength, '"'));

  Utils::addBackslashChars(text, '"');

  EXPECT_EQ(text.length(), kLength + kLength / 2);
}

TEST(Utils, ConvertsArguments) {
  const char* const texts[] = {"-f", "", "\xC3\xA4\xFF"};

  const auto list = Utils::convertToStringList(3, texts);

  ASSERT_EQ(list->size(), 3U);
  EXPECT_EQ(list->get(0), "-f");
  EXPECT_EQ(list->get(1), "");
  EXPECT_EQ(list->get(2).toBytes(), "\xC3\xA4\xFF");
}

TEST(Utils, ConvertsNoArgumentsToAnEmptyList) {
  EXPECT_TRUE(Utils::convertToStringList(0, nullptr)->isEmpty());
  EXPECT_TRUE(Utils::convertToStringList(-1, nullptr)->isEmpty());
}

orv::Reference<Utils::StringList> listOf(const std::vector<const char*>& texts) {
  return Utils::convertToStringList(static_cast<int>(texts.size()), texts.data());
}

TEST(Utils, ConvertsListsToNumbers) {
  EXPECT_EQ(Utils::convertStringListToIntArray(*listOf({" 1", "0", "-3 "})),
            (std::vector<int>{1, 0, -3}));
  EXPECT_EQ(Utils::convertStringListToIntArray(*listOf({})), std::vector<int>());
  EXPECT_THROW(Utils::convertStringListToIntArray(*listOf({"1", "x"})), NumberFormatException);
}

TEST(Utils, JoinsLists) {
  EXPECT_EQ(Utils::createDelimitedStr(*listOf({}), ", "), "");
  EXPECT_EQ(Utils::createDelimitedStr(*listOf({"a"}), ", "), "a");
  EXPECT_EQ(Utils::createDelimitedStr(*listOf({"a", "", "b"}), ", "), "a, , b");
  EXPECT_EQ(Utils::createDelimitedStr(*listOf({"", ""}), "\xE2\x82\xAC"), "\xE2\x82\xAC");
  EXPECT_EQ(Utils::createDelimitedStr(*listOf({"a", "b"}), ""), "ab");
  EXPECT_EQ(Utils::convertStringListToString(*listOf({"a", "b", "c"})), "a b c");
  EXPECT_EQ(Utils::convertStringListToString(*listOf({})), "");
}

TEST(Utils, PadsVersions) {
  struct Case {
    const char* version;
    const char* expected;
  };
  constexpr Case kCases[] = {
      {"",               ""              },
      {".",              "."             },
      {"...",            "..."           },
      {"1",              "01"            },
      {"1.",             "01."           },
      {"1.2",            "01.02"         },
      {"9.2.3",          "09.02.003"     },
      {"11.5.12",        "11.05.012"     },
      {"13.10.150.4",    "13.10.150.4"   },
      {"1.2.3.4",        "01.02.003.4"   },
      {"1.2.34.5.6",     "01.02.034.5.6" },
      {"11..5",          "11..005"       },
      {"..5",            "..005"         },
      {".5",             ".05"           },
      {"123.1234.12345", "123.1234.12345"},
      {"a.b.c",          "0a.0b.00c"     },
      {"-.-.--",         "0-.0-.0--"     },
      {"\xC3\xA4.1",     "0\xC3\xA4.01"  },
      {" . ",            "0 .0 "         },
  };

  for (const Case& row : kCases) {
    String version(row.version);
    Utils::formatEngVerString(version);
    EXPECT_EQ(version, row.expected) << row.version;
  }
}

}  // namespace
