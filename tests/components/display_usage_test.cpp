#include "app/CommandLine.h"

#include "tests/components/component_test.h"

namespace component_tests {
namespace {

class DisplayUsage : public ComponentTest {};

TEST_F(DisplayUsage, IsTheBundlesTextInTextMode) {
  displayUsage(false);

  EXPECT_EQ(printed(), "call it so\n");
}

TEST_F(DisplayUsage, ClosesTheDocumentInJsonMode) {
  displayUsage(true);

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(\t"usage":)",
                          R"(\t[)",
                          R"(\t\t"zelk -f <path>config_file [-runonce] [-JSON]")",
                          R"(\t])",
                          R"(})",
                      }),
                      printed());
}

}  // namespace
}  // namespace component_tests
