#include "orv/String.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "tests/unit/printing.h"

namespace {

using orv::String;

TEST(String, IsEmptyAtFirst) {
  const String text;

  EXPECT_TRUE(text.isEmpty());
  EXPECT_EQ(text.length(), 0U);
  EXPECT_EQ(text, "");
}

TEST(String, CountsCharactersNotBytes) {
  const String text("\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");

  EXPECT_EQ(text.length(), 3U);
  EXPECT_EQ(text.wide(), L"\u00E4\u20AC\U0001F600");
  EXPECT_EQ(text.first(2).toBytes(), "\xC3\xA4\xE2\x82\xAC");
}

TEST(String, WritesNumbersInDecimal) {
  EXPECT_EQ(String::valueOf(0), "0");
  EXPECT_EQ(String::valueOf(-7), "-7");
  EXPECT_EQ(String::valueOf(INT_MIN), "-2147483648");
  EXPECT_EQ(String::valueOf(4294967295U), "4294967295");
  EXPECT_EQ(String::valueOf(LONG_MIN), "-9223372036854775808");
  EXPECT_EQ(String::valueOf(ULONG_MAX), "18446744073709551615");
}

TEST(String, Concatenates) {
  String text("a");

  text += "b";
  text += String("c");
  text.append(3, L'-').append(String("d")).append(0, L'?');

  EXPECT_EQ(text, "abc---d");
}

TEST(String, IsMadeOfASum) {
  const String text("b");
  String line("a");

  line += "-" + text + "-" + String("c") + "\xC3\xA4" + (text + text);

  EXPECT_EQ(line,
            "a-b-c\xC3\xA4"
            "bb");
  EXPECT_EQ(String(text + text), "bb");
  EXPECT_EQ(String(text + "c"), "bc");
}

TEST(String, AppendsItself) {
  String text("ab");

  text += text;

  EXPECT_EQ(text, "abab");
}

TEST(String, Inserts) {
  String text("ad");

  text.insert(1, 2, L'b');
  text.insert(4, 1, L'e');

  EXPECT_EQ(text, "abbde");
}

TEST(String, InsertsWholeCharacters) {
  String text("\xE2\x82\xAC\xFFz");

  text.insert(2, 2, L'\u00E4');
  text.append(1, L'\u20AC');

  EXPECT_EQ(text.toBytes(), "\xE2\x82\xAC\xFF\xC3\xA4\xC3\xA4z\xE2\x82\xAC");
}

TEST(String, IsMadeOfWideCharacters) {
  EXPECT_EQ(String(std::wstring{L'a', 0xE4, 0x20AC, 0xDCFF, 0xD800}).toBytes(),
            "a\xC3\xA4\xE2\x82\xAC\xFF?");
}

TEST(String, FindsCharactersAndStarts) {
  const String text("//x=1");

  EXPECT_TRUE(text.contains('='));
  EXPECT_FALSE(text.contains('y'));
  EXPECT_TRUE(text.startsWith("//"));
  EXPECT_FALSE(text.startsWith("//y"));
  EXPECT_FALSE(String("/").startsWith("//"));
  EXPECT_TRUE(String().startsWith(""));
}

TEST(String, TakesNoMoreThanItHas) {
  EXPECT_EQ(String("abc").first(2), "ab");
  EXPECT_EQ(String("abc").first(9), "abc");
  EXPECT_EQ(String().first(1), "");
}

TEST(String, TrimsBothEnds) {
  EXPECT_EQ(String(" \t\r\na b\n\r\t ").trim(), "a b");
  EXPECT_EQ(String(" \t\r\n").trim(), "");
  EXPECT_EQ(String().trim(), "");
  EXPECT_EQ(String("\v\fa\u00A0").trim(), "\v\fa\u00A0");
  EXPECT_EQ(String("xxaxx").trim("x"), "a");
}

TEST(String, ChangesTheCaseOfAsciiAlone) {
  const String lower("az{`\xC3\xA4\xC4\xB1");
  EXPECT_EQ(lower.toUpper(), "AZ{`\xC3\xA4\xC4\xB1");
  EXPECT_EQ(lower, "az{`\xC3\xA4\xC4\xB1");
  EXPECT_TRUE(String("Both").equalsIgnoreCase("bOTH"));
  EXPECT_FALSE(String("both").equalsIgnoreCase("bot"));
  EXPECT_FALSE(String("bot").equalsIgnoreCase("both"));
  EXPECT_FALSE(String("\xC3\xA4").equalsIgnoreCase("\xC3\x84"));
  EXPECT_FALSE(String("[").equalsIgnoreCase("{"));
}

TEST(String, ComparesWholeTexts) {
  EXPECT_EQ(String("a"), String("a"));
  EXPECT_NE(String("a"), String("A"));
  EXPECT_NE(String(std::string_view("a\0", 2)), String("a"));
}

}  // namespace
