#include "app/Failures.h"

#include <cstddef>

#include "monitor/JsonFrame.h"
#include "output/ProcessWide.h"
#include "tests/components/component_test.h"

namespace component_tests {
namespace {

class Failures : public ComponentTest {};

constexpr auto kCode = static_cast<orv::Result>(0x8007001CU);

TEST_F(Failures, ADescriptionInTextIsALineOnStandardError) {
  EXPECT_EQ(reportDescription("a \"quoted\" reason"), 1);

  EXPECT_EQ(printedErrors(), "a \"quoted\" reason\n");
  EXPECT_EQ(printed(), "");
}

TEST_F(Failures, ADescriptionInJsonIsAMemberBetweenFrameLines) {
  m_JSON = true;

  EXPECT_EQ(reportDescription("a \"quoted\" reason"), 1);

  EXPECT_EQ(printedErrors(), "\t\"error\": \"a \\\"quoted\\\" reason\"\n");
  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"()",
                          R"({)",
                          R"(\t"description": "Monitor Utility",)",
                          R"(\t"title": "JSON output",)",
                          R"(\t"version": "product 15.21.016.000",)",
                          R"(\t"copyright": "(c) somebody",)",
                          R"(})",
                      }),
                      printed());
}

TEST_F(Failures, WithinARunInJsonOnlyTheBraceIsAdded) {
  m_JSON = true;
  displayJSONHeader(true, 0, 1);

  EXPECT_EQ(reportDescription("reason"), 1);

  EXPECT_EQ(printedErrors(), "\t\"error\": \"reason\"\n");
  EXPECT_EQ(printed(), "}\n");
}

TEST_F(Failures, AnExceptionIsReportedByItsDescriptionOrItsResult) {
  EXPECT_EQ(reportFailure(orv::Exception("reason")), 1);
  EXPECT_EQ(reportFailure(orv::ResultException(kCode, "with a result")), 1);
  EXPECT_EQ(reportFailure(orv::ResultException(kCode)), kCode);

  EXPECT_EQ(printedErrors(), "reason\nwith a result\nfatal 0x8007001C\n");
}

TEST_F(Failures, AnExceptionWithoutEitherIsACleanEnd) {
  EXPECT_EQ(reportFailure(orv::Exception()), 0);

  EXPECT_EQ(printedErrors(), "");
}

TEST_F(Failures, AFatalErrorInJsonLeavesTheDocumentOpen) {
  m_JSON = true;
  displayJSONHeader(true, 0, 1);

  EXPECT_EQ(reportFatal(kExitOutOfMemory), kExitOutOfMemory);

  EXPECT_EQ(printedErrors(), "\t\"error\": \"fatal 0x8007000E\"\n");
  EXPECT_EQ(printed(), "");
}

TEST_F(Failures, WithoutStandardErrorTheExitCodeAloneTells) {
  const auto full = orv::makeReference<testing_support::RecordingOutputStream>(std::size_t{0});
  s_errpw = newPrintWriter(full, true);

  EXPECT_EQ(reportDescription("reason"), 1);
  EXPECT_EQ(reportFatal(kExitUnknownFailure), kExitUnknownFailure);
}

}  // namespace
}  // namespace component_tests
