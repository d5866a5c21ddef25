// The members of the configuration echo. All of it stands in tests/program/golden.
#include "tests/components/report_test.h"

namespace component_tests {
namespace {

using testing_support::readFile;

class RunHeader : public ComponentTest {
 protected:
  RunHeader() {
    config_.fileOutput = true;
    config_.logFileName = orv::String((folder_ / "log").string());
  }

  // One line of the echo.
  std::string member(const char* name, const char* value, bool json, int kind) {
    MonitorProcessor processor(&config_, json);
    processor.createOutputFormatter();
    processor.printConfigurationNV(name, value, json, kind);
    return readFile(folder_ / "log");
  }

  testing_support::TemporaryFolder folder_;
  ConfigData config_;
};

TEST_F(RunHeader, ADoubleQuoteInAServerNameIsNotEscaped) {
  EXPECT_EQ(member("server", R"(db"host)", true, 0), "\t\t\"server\": \"db\"host\",\n");
}

TEST_F(RunHeader, AMemberIsWrittenByItsKind) {
  EXPECT_EQ(member("name", "value", true, 0), "\t\t\"name\": \"value\",\n");
  EXPECT_EQ(member("name", "10", true, 1), "\t\t\"name\": 10,\n");
  EXPECT_EQ(member("name", "true", true, 2), "\t\t\"name\": true,\n");
  EXPECT_EQ(member("name", "value", false, 0), "name:                value\n");
  EXPECT_EQ(member("name", "10", false, 1), "name:                10\n");
}

TEST_F(RunHeader, HandleDetailIsTheLastMemberWhateverItsKind) {
  for (const int kind : {0, 1, 2}) {
    EXPECT_EQ(member("handle_detail", "true", true, kind), "\t\t\"handle_detail\": true\n");
  }
  EXPECT_EQ(member("Handle_detail", "true", true, 2), "\t\t\"Handle_detail\": true,\n");
}

TEST_F(RunHeader, ALabelOf21CharactersOrMoreIsNotCut) {
  EXPECT_EQ(member("twenty characters...", "x", false, 0), "twenty characters...:x\n");
  EXPECT_EQ(member("more than twenty chars", "x", false, 0), "more than twenty chars:x\n");
}

}  // namespace
}  // namespace component_tests
