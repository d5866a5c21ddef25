#include "output/FormatHelper.h"

#include <string>

#include "tests/components/component_test.h"

namespace component_tests {
namespace {

class FormatHelperTest : public ComponentTest {
 protected:
  FormatHelperTest() {
    logger_->addFileHandler(orv::String((folder_ / "log").string()));
    logger_->setLevel(Level::kAll);
  }

  [[nodiscard]] std::string written() const { return testing_support::readFile(folder_ / "log"); }

  testing_support::TemporaryFolder folder_;
  orv::Reference<Logger> logger_ = orv::makeReference<Logger>("ZELK", "ZELK_");
  orv::Reference<FormatHelper> output_ = orv::makeReference<FormatHelper>(logger_.get());
};

orv::String padded(orv::String text, int length) {
  FormatHelper::padToLen(text, length);
  return text;
}

TEST_F(FormatHelperTest, GivesTabsForAPositiveCount) {
  EXPECT_EQ(FormatHelper::getTabStr(0), "");
  EXPECT_EQ(FormatHelper::getTabStr(-3), "");
  EXPECT_EQ(FormatHelper::getTabStr(3), "\t\t\t");
}

TEST_F(FormatHelperTest, PadsATextAndNeverCutsIt) {
  EXPECT_EQ(padded("ten chars!", 6), "ten chars!");
  EXPECT_EQ(padded("ten chars!", 10), "ten chars!");
  EXPECT_EQ(padded("ten chars!", 12), "ten chars!  ");
  EXPECT_EQ(padded("", 3), "   ");
  EXPECT_EQ(padded("x", -1), "x");
  EXPECT_EQ(padded("für", 5), "für  ");
}

TEST_F(FormatHelperTest, AHeaderStandsInCapitalsBetweenTwoRulesOfItsLength) {
  output_->putHeader("files", 1);

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(\t=====)",
                          R"(\tFILES)",
                          R"(\t=====)",
                      }),
                      written());
}

TEST_F(FormatHelperTest, AHeaderWithoutATitleIsThreeLinesOfIndentation) {
  output_->putHeader("", 2);

  EXPECT_PRED_FORMAT2(sameText, "\t\t\n\t\t\n\t\t\n", written());
}

TEST_F(FormatHelperTest, ARuleCountsCharactersNotBytes) {
  output_->putHeader("größe", 0);

  EXPECT_PRED_FORMAT2(sameText, "=====\nGRößE\n=====\n", written());
}

TEST_F(FormatHelperTest, DataStandsBehindItsTabsUnchanged) {
  output_->putData("Page Size:  4096 ", 2);
  output_->putData("\tkept", 0);
  output_->putData("", 0);
  output_->putData("no tab", -1);

  EXPECT_PRED_FORMAT2(sameText, "\t\tPage Size:  4096 \n\tkept\n\nno tab\n", written());
}

TEST_F(FormatHelperTest, AnErrorHasItsMarkAndNoIndentation) {
  output_->putError("no connection");

  EXPECT_PRED_FORMAT2(sameText, "ERROR! - no connection\n", written());
}

TEST_F(FormatHelperTest, AThresholdAboveInfoKeepsErrorsAlone) {
  for (const Level level : {Level::kWarning, Level::kSevere}) {
    output_->setLevel(level);
    output_->putHeader("dropped", 0);
    output_->putData("dropped", 0);
    output_->putError("kept");
  }

  EXPECT_PRED_FORMAT2(sameText, "ERROR! - kept\nERROR! - kept\n", written());
}

TEST_F(FormatHelperTest, SharesItsLogger) {
  logger_ = {};

  output_->putData("after its first owner", 0);

  EXPECT_EQ(written(), "after its first owner\n");
}

}  // namespace
}  // namespace component_tests
