#include "orv/Parsing.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/unit/printing.h"

namespace {

using orv::String;
using orv::util::StringTokenizer;

TEST(StringTokenizer, GivesPiecesThatAreNotEmpty) {
  struct Case {
    const char* text;
    std::vector<String> pieces;
  };
  const std::vector<Case> cases = {
      {"",           {}             },
      {"=",          {}             },
      {"===",        {}             },
      {"a",          {"a"}          },
      {"=a",         {"a"}          },
      {"a=",         {"a"}          },
      {"a=b",        {"a", "b"}     },
      {"==a==b==c=", {"a", "b", "c"}},
      {" = ",        {" ", " "}     },
  };

  for (const Case& row : cases) {
    StringTokenizer tokens(row.text, '=');
    EXPECT_EQ(tokens.countTokens(), row.pieces.size()) << row.text;
    std::vector<String> pieces;
    while (tokens.hasMoreTokens()) pieces.push_back(tokens.nextToken());
    EXPECT_EQ(pieces, row.pieces) << row.text;
    EXPECT_EQ(tokens.nextToken(), "");
  }
}

TEST(StringTokenizer, CountsWhatIsLeft) {
  StringTokenizer tokens("a/b/c", '/');

  tokens.nextToken();

  EXPECT_EQ(tokens.countTokens(), 2U);
  EXPECT_EQ(tokens.nextToken(), "b");
}

}  // namespace
