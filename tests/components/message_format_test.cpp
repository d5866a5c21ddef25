#include "messages/MessageFormat.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using enum ArgumentKind;

struct Row {
  std::string text;
  std::vector<ArgumentKind> arguments;
};

TEST(MessageFormat, ConversionsThatFindTheirArguments) {
  const Row rows[] = {
      {"",                {}                      },
      {"plain",           {}                      },
      {"100%%",           {}                      },
      {"%%%d%%",          {kInteger}              },
      {"%s",              {kText}                 },
      {"%10s",            {kText}                 },
      {"%-10s",           {kText}                 },
      {"%.3s",            {kText}                 },
      {"%d",              {kInteger}              },
      {"%i",              {kInteger}              },
      {"%u",              {kInteger}              },
      {"%o",              {kInteger}              },
      {"%x",              {kInteger}              },
      {"0x%08X",          {kInteger}              },
      {"%+ -#05.3d",      {kInteger}              },
      {"%2047d",          {kInteger}              },
      {"%.2047d",         {kInteger}              },
      {"\"%s\": %s (%X)", {kText, kText, kInteger}},
      {"one of two: %s",  {kText, kInteger}       },
      {"none of two",     {kText, kInteger}       },
  };

  for (const Row& row : rows) EXPECT_TRUE(conversionsFit(row.text, row.arguments)) << row.text;
}

TEST(MessageFormat, ConversionsThatCouldReadOrWriteAnywhere) {
  const Row rows[] = {
      {"%s",                      {}                  },
      {"%s %s",                   {kText}             },
      {"%d %d",                   {kInteger}          },
      {"%s",                      {kInteger}          },
      {"%d",                      {kText}             },
      {"%d %s",                   {kText, kInteger}   },
      {"%n",                      {}                  },
      {"%n",                      {kInteger}          },
      {"%n",                      {kText}             },
      {"%hhn",                    {kText}             },
      {"%ls",                     {kText}             },
      {"%S",                      {kText}             },
      {"%hs",                     {kText}             },
      {"%ld",                     {kInteger}          },
      {"%lld",                    {kInteger}          },
      {"%hhd",                    {kInteger}          },
      {"%jd",                     {kInteger}          },
      {"%zd",                     {kInteger}          },
      {"%*d",                     {kInteger, kInteger}},
      {"%.*d",                    {kInteger, kInteger}},
      {"%.*s",                    {kInteger, kText}   },
      {"%1$s",                    {kText}             },
      {"%2$s",                    {kText, kText}      },
      {"%c",                      {kInteger}          },
      {"%f",                      {kInteger}          },
      {"%p",                      {kText}             },
      {"%m",                      {}                  },
      {"%m",                      {kText}             },
      {"%'d",                     {kInteger}          },
      {"%5%",                     {kInteger}          },
      {"%2048d",                  {kInteger}          },
      {"%.2048d",                 {kInteger}          },
      {"%999999999d",             {kInteger}          },
      {"%2048.3d",                {kInteger}          },
      {"%999999999s",             {kText}             },
      {"%.999999999d",            {kInteger}          },
      {"%99999999999999999999d",  {kInteger}          },
      {"%.99999999999999999999d", {kInteger}          },
  };

  for (const Row& row : rows) EXPECT_FALSE(conversionsFit(row.text, row.arguments)) << row.text;
}

TEST(MessageFormat, APercentSignThatBeginsNothing) {
  for (const std::string text : {"%", "100%", "%%%", "%-", "%08", "%.", "%5."}) {
    EXPECT_FALSE(conversionsFit(text, {})) << text;
    EXPECT_FALSE(conversionsFit(text, std::vector{kInteger})) << text;
    EXPECT_FALSE(conversionsFit(text, std::vector{kText})) << text;
  }
}

}  // namespace
