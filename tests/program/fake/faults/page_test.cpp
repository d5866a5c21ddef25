// The page about failing engines shows the table that the program is tested against.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/program/fake/faults/effects.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text_comparison.h"

namespace program_tests {
namespace {

using testing_support::readFile;
using testing_support::sameText;

std::string wordsOf(Effect effect) {
  switch (effect) {
    case Effect::kEndsList:
      return "the list ends";
    case Effect::kDropsEntry:
      return "left out";
    case Effect::kEndsRun:
      return "the run ends";
    default:
      return "nothing";
  }
}

std::string rowOf(const EffectRow& row) {
  std::string line = "| `" + std::string(row.function) + "` |";
  for (const Effect effect : {row.onNoEntry, row.onClientGone, row.onFileClosed, row.onOther}) {
    line += " " + wordsOf(effect) + " |";
  }
  return line + "\n";
}

TEST(FaultPage, ShowsTheTableOfEffects) {
  std::string expected =
      "| Function | 7008 | 7010 | 7015 | any other but 0 |\n"
      "|---|---|---|---|---|\n";
  for (const EffectRow& row : effectTable()) expected += rowOf(row);

  const std::string page = readFile(std::filesystem::path(ZELK_SOURCE_DIR) / "docs/exit-codes.md");

  const auto begin = page.find("| Function |");
  ASSERT_NE(begin, std::string::npos);
  EXPECT_PRED_FORMAT2(sameText, expected, page.substr(begin, page.find("\n\n", begin) + 1 - begin));
}

}  // namespace
}  // namespace program_tests
