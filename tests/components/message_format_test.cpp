#include "messages/MessageFormat.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const MessageArgument kText = "text";
const MessageArgument kFive = 5;

struct Row {
  std::string text;
  std::vector<MessageArgument> arguments;
  std::string expected;
};

TEST(MessageFormat, FillsInConversionsThatHaveTheirArguments) {
  const Row rows[] = {
      {"",                      {},                                  ""                      },
      {"100%%",                 {},                                  "100%"                  },
      {"%%%d%%",                {kFive},                             "%5%"                   },
      {"%s",                    {kText},                             "text"                  },
      {"%6s|%-6s|%.2s|%4.1s|",  {kText, kText, kText, kText},        "  text|text  |te|   t|"},
      {"%d %i %u",              {kFive, -5, -1},                     "5 -5 4294967295"       },
      {"%o %x %X",              {8, 255, 255},                       "10 ff FF"              },
      {"0x%08X",                {-2147024891},                       "0x80070005"            },
      {"%+d|% d|%-3d|%03d|%#x", {kFive, kFive, kFive, kFive, kFive}, "+5| 5|5  |005|0x5"     },
      {"%.3d|%5.3d",            {kFive, kFive},                      "005|  005"             },
      {"%c%3c",                 {'a', 'b'},                          "a  b"                  },
      {"%hd %hx %hhu",          {65537, 65551, 257},                 "1 f 1"                 },
      {"%'d",                   {1234567},                           "1234567"               },
      {"%2$s of %1$s",          {"one", "two"},                      "two of one"            },
      {"%1$s %1$s %2$08X",      {kText, 255},                        "text text 000000FF"    },
      {"%2$d",                  {kText, kFive},                      "5"                     },
      {"%10$d",                 std::vector<MessageArgument>(10,     7),                       "7"},
      {"one of two: %s",                       {kText, kFive},                                           "one of two: text"                              },
      {"none of two",                       {kText, kFive},                                              "none of two"   },
  };

  for (const Row& row : rows) EXPECT_EQ(fillIn(row.text, row.arguments), row.expected) << row.text;
}

TEST(MessageFormat, RefusesConversionsThatCouldReadOrWriteAnywhere) {
  const Row rows[] = {
      {"%s",                      {},             {}},
      {"%s %s",                   {kText},        {}},
      {"%d %d",                   {kFive},        {}},
      {"%s",                      {kFive},        {}},
      {"%d",                      {kText},        {}},
      {"%c",                      {kText},        {}},
      {"%d %s",                   {kText, kFive}, {}},
      {"%n",                      {kText, kFive}, {}},
      {"%n",                      {kFive, kText}, {}},
      {"%hhn",                    {kFive},        {}},
      {"%1$n",                    {kFive},        {}},
      {"%ls",                     {kText},        {}},
      {"%S",                      {kText},        {}},
      {"%hs",                     {kText},        {}},
      {"%ld",                     {kFive},        {}},
      {"%lld",                    {kFive},        {}},
      {"%hhhd",                   {kFive},        {}},
      {"%hc",                     {kFive},        {}},
      {"%jd",                     {kFive},        {}},
      {"%zd",                     {kFive},        {}},
      {"%*d",                     {kFive, kFive}, {}},
      {"%.*d",                    {kFive, kFive}, {}},
      {"%.*s",                    {kFive, kText}, {}},
      {"%*1$d",                   {kFive},        {}},
      {"%0$d",                    {kFive},        {}},
      {"%2$s",                    {kText},        {}},
      {"%99999999999999999999$d", {kFive},        {}},
      {"%1$s %s",                 {kText, kText}, {}},
      {"%s %1$s",                 {kText, kText}, {}},
      {"%f",                      {kFive},        {}},
      {"%p",                      {kText},        {}},
      {"%m",                      {},             {}},
      {"%5%",                     {kFive},        {}},
      {"%",                       {kFive},        {}},
      {"100%",                    {kFive},        {}},
      {"%%%",                     {kFive},        {}},
      {"%-",                      {kFive},        {}},
      {"%08",                     {kFive},        {}},
      {"%5.",                     {kFive},        {}},
      {"%1$",                     {kFive},        {}},
  };

  for (const Row& row : rows) EXPECT_FALSE(fillIn(row.text, row.arguments)) << row.text;
}

// What lies beyond the longest result is not made, but the part within it is that of the whole.
TEST(MessageFormat, PadsBeyondTheLongestResult) {
  const std::string blanks(2047, ' ');
  const std::string zeros(2047, '0');
  for (const std::string width : {"2047", "3000", "2147483647", "99999999999999999999"}) {
    const auto start = [](const std::string& text, const MessageArgument& argument) {
      return fillIn(text, std::vector{argument}).value_or("refused").substr(0, 2047);
    };
    EXPECT_EQ(start("%-" + width + "s|", kText), "text" + blanks.substr(4)) << width;
    EXPECT_EQ(start("%-" + width + "d|", kFive), "5" + blanks.substr(1)) << width;
    EXPECT_EQ(start("%." + width + "s", kText), "text") << width;
    if (width == "2047") continue;
    EXPECT_EQ(start("%" + width + "s", kText), blanks) << width;
    EXPECT_EQ(start("%" + width + "d", kFive), blanks) << width;
    EXPECT_EQ(start("%." + width + "d", kFive), zeros) << width;
    EXPECT_EQ(start("%" + width + ".2047d", kFive).substr(0, 900), blanks.substr(0, 900)) << width;
  }
}

}  // namespace
