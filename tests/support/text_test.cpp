#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

#include "tests/support/masking.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text_comparison.h"

namespace testing_support {
namespace {

TEST(MaskTimes, ReplacesWellFormedTimesAlone) {
  struct Row {
    std::string text;
    std::string masked;
  };
  const Row rows[] = {
      {"<Sat Nov 21 11:59:07 UTC 2026>\n",                           "<Ddd Mmm 00 00:00:00 UTC 0000>\n"         },
      {"\n<Sat Nov 21 11:59:07 UTC 2026>\n",                         "\n<Ddd Mmm 00 00:00:00 UTC 0000>\n"       },
      {"<Sa Nov 21 11:59:07 UTC 2026>\n",                            "<Sa Nov 21 11:59:07 UTC 2026>\n"          },
      {"<t M Nov 21 11:59:07 UTC 2026>\n",                           "<t M Nov 21 11:59:07 UTC 2026>\n"         },
      {"<Sat Nov 21 23:59:07 UTC 2026>\n",                           "<Sat Nov 21 23:59:07 UTC 2026>\n"         },
      {"<Sat Nov 21 11:59:07 CET 2026>\n",                           "<Sat Nov 21 11:59:07 CET 2026>\n"         },
      {"*** START RECORD 11/21/26 11:59 PM ***\n",                   "*** START RECORD 00/00/00 00:00 XM ***\n" },
      {"*** START RECORD 21.11.26 11:59 PM ***\n",                   "*** START RECORD 21.11.26 11:59 PM ***\n" },
      {"\n\t\"time\": \"2026-11-21T23:59:07+0000\",\n",
       "\n\t\"time\": \"0000-00-00T00:00:00+0000\",\n"                                                          },
      {"\n\t\"start_record_time\": \"2026-11-21T23:59:07+0000\",\n",
       "\n\t\"start_record_time\": \"0000-00-00T00:00:00+0000\",\n"                                             },
      {"\n\t\"time\": \"2026-11-21T23:59:07Z\",\n",                  "\n\t\"time\": \"2026-11-21T23:59:07Z\",\n"},
      {"\n\t\"other\": \"2026-11-21T23:59:07+0000\",\n",
       "\n\t\"other\": \"2026-11-21T23:59:07+0000\",\n"                                                         },
  };

  for (const Row& row : rows) {
    EXPECT_EQ(maskTimes(row.text), row.masked);
  }
}

TEST(Differences, ShowTabsLineEndsAndOddBytes) {
  const std::string expected = "same\n\ttab\nlast\n";
  const std::string actual = "same\n    tab \n\xFF\x01\nlast";

  const std::string shown = differences(expected, actual);

  EXPECT_EQ(shown,
            "  same¶\n"
            "- »tab¶\n"
            "- last¶\n"
            "+     tab ¶\n"
            "+ \\xFF\\x01¶\n"
            "+ last\n");
}

TEST(Differences, KeepThreeLinesAround) {
  const std::string expected = "1\n2\n3\n4\nold\n5\n6\n7\n8\n";
  const std::string actual = "1\n2\n3\n4\n5\n6\n7\n8\n";

  const std::string shown = differences(expected, actual);

  EXPECT_EQ(shown, "  2¶\n  3¶\n  4¶\n- old¶\n  5¶\n  6¶\n  7¶\n");
}

TEST(SameAsFile, TakesNoFileForNoText) {
  const TemporaryFolder folder;

  EXPECT_TRUE(sameAsFile(folder / "none", ""));
  EXPECT_FALSE(sameAsFile(folder / "none", "text"));
}

TEST(SameAsFile, RewritesTheFileOnRequest) {
  const TemporaryFolder folder;
  writeFile(folder / "golden", "old\n");
  setenv("ZELK_UPDATE_GOLDENS", "1", 1);

  EXPECT_TRUE(sameAsFile(folder / "golden", "new\n"));
  EXPECT_TRUE(sameAsFile(folder / "none", ""));

  unsetenv("ZELK_UPDATE_GOLDENS");
  EXPECT_EQ(readFile(folder / "golden"), "new\n");
  EXPECT_FALSE(std::filesystem::exists(folder / "none"));
}

}  // namespace
}  // namespace testing_support
