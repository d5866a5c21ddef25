#include "monitor/JsonFrame.h"

#include <string>

#include "output/ProcessWide.h"
#include "tests/components/component_test.h"

namespace component_tests {
namespace {

class JsonFrame : public ComponentTest {
 protected:
  static void open() { displayJSONHeader(true, 0, 0); }
  static void handOver() { displayJSONHeader(true, 0, 1); }
  static void close() { displayJSONHeader(true, 1, 2); }
};

const std::string kOpening = lines({
    R"()",
    R"({)",
    R"(\t"description": "Monitor Utility",)",
    R"(\t"title": "JSON output",)",
    R"(\t"version": "product 15.21.016.000",)",
    R"(\t"copyright": "(c) somebody",)",
});

TEST_F(JsonFrame, IsOpenedAndClosed) {
  open();
  EXPECT_PRED_FORMAT2(sameText, kOpening, printed());

  close();
  EXPECT_PRED_FORMAT2(sameText, kOpening + "}\n", printed());
}

TEST_F(JsonFrame, ClosingWhatWasNeverOpenedPrintsTheBrace) {
  close();
  close();

  EXPECT_EQ(printed(), "}\n}\n");
}

TEST_F(JsonFrame, OpeningTwicePrintsOnceAndStillClosesOnce) {
  open();
  open();
  EXPECT_PRED_FORMAT2(sameText, kOpening, printed());

  close();
  EXPECT_PRED_FORMAT2(sameText, kOpening + "}\n", printed());
}

TEST_F(JsonFrame, OpeningAThirdTimePrintsAgain) {
  open();
  open();
  open();

  EXPECT_PRED_FORMAT2(sameText, kOpening + kOpening, printed());
}

TEST_F(JsonFrame, TheRunClosesTheDocumentThatItOwns) {
  handOver();
  close();
  EXPECT_EQ(printed(), "");

  close();
  EXPECT_EQ(printed(), "}\n") << "the run has given it back";
}

TEST_F(JsonFrame, ARunThatFailedLeavesItsBraceToTheNextClosing) {
  handOver();
  open();
  EXPECT_EQ(printed(), "");

  close();
  EXPECT_EQ(printed(), "}\n");
}

TEST_F(JsonFrame, ADocumentThatTheRunHasClosedIsLeftAlone) {
  handOver();
  completeJsonDocument();
  open();
  close();
  EXPECT_EQ(printed(), "");

  close();
  EXPECT_EQ(printed(), "}\n") << "the run has given it back";
}

TEST_F(JsonFrame, ClosesInEveryMode) {
  for (const int mode : {0, 1, 2, 3}) displayJSONHeader(true, 1, mode);

  EXPECT_EQ(printed(), "}\n}\n}\n}\n");
}

TEST_F(JsonFrame, AnyOtherCombinationDoesNothing) {
  displayJSONHeader(true, 0, 2);
  displayJSONHeader(true, 2, 0);
  displayJSONHeader(true, -1, 1);
  EXPECT_EQ(printed(), "");

  open();
  EXPECT_PRED_FORMAT2(sameText, kOpening, printed()) << "the state is still the first one";
}

TEST_F(JsonFrame, IsNoPartOfTextOutput) {
  displayJSONHeader(false, 0, 0);
  displayJSONHeader(false, 0, 1);
  displayJSONHeader(false, 1, 2);
  EXPECT_EQ(printed(), "");

  close();
  EXPECT_EQ(printed(), "}\n") << "nor was the document handed over";
}

}  // namespace
}  // namespace component_tests
