// The configuration echo.
#include "tests/components/report_test.h"
#include "tests/components/utc_time.h"
#include "tests/support/masking.h"

namespace component_tests {
namespace {

using testing_support::maskTimes;
using testing_support::readFile;

class RunHeader : public ComponentTest {
 protected:
  RunHeader() {
    config_.server = "dbhost1";
    config_.user = "the user";
    config_.password = "the password";
    config_.refreshRate = 10;
    config_.refreshLimit = 3;
    config_.outputType = "file";
    config_.fileOutput = true;
    config_.logFileName = orv::String((folder_ / "log").string());
  }

  std::string echo(bool json) {
    MonitorProcessor processor(&config_, json);
    processor.createOutputFormatter();
    processor.printConfiguration(json);
    // A time stands at the beginning of a line.
    return maskTimes("\n" + readFile(folder_ / "log")).substr(1);
  }

  // One line of the echo.
  std::string member(const char* name, const char* value, bool json, int kind) {
    MonitorProcessor processor(&config_, json);
    processor.createOutputFormatter();
    processor.printConfigurationNV(name, value, json, kind);
    return readFile(folder_ / "log");
  }

  const UtcTime utc_;
  testing_support::TemporaryFolder folder_;
  const std::string log_ = (folder_ / "log").string();
  ConfigData config_;
};

TEST_F(RunHeader, TextEchoSaysYesOrNoAndNeverThePassword) {
  config_.showSessions = true;
  config_.showResources = true;
  config_.showHandles = true;

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(<Ddd Mmm 00 00:00:00 UTC 0000>)",
                          R"()",
                          R"(begin of settings)",
                          R"(Server:              dbhost1)",
                          R"(Refresh Rate(secs):  10)",
                          R"(Refresh Limit:       3)",
                          R"(Output:              file)",
                          R"(File Name:           )" + log_,
                          R"(//Monitor Activities)",
                          R"(Files:               No)",
                          R"(Sessions:            Yes)",
                          R"(Connections:         No)",
                          R"(Resource Stats:      Yes)",
                          R"(Communication Stats: No)",
                          R"(Handle Detail:       Yes)",
                          R"(end of settings)",
                          R"()",
                      }),
                      echo(false));
}

TEST_F(RunHeader, JsonEchoQuotesTextsAlone) {
  config_.showFiles = true;
  config_.showConnections = true;
  config_.showCommunications = true;

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(\t"time": "0000-00-00T00:00:00+0000",)",
                          R"(\t"user_configuration":)",
                          R"(\t{)",
                          R"(\t\t"server": "dbhost1",)",
                          R"_(\t\t"refresh_rate(secs)": 10,)_",
                          R"(\t\t"refresh_limit": 3,)",
                          R"(\t\t"output": "file",)",
                          R"(\t\t"file_name": ")" + log_ + R"(",)",
                          R"(\t\t"files_statistics": true,)",
                          R"(\t\t"sessions_statistics": false,)",
                          R"(\t\t"connections_statistics": true,)",
                          R"(\t\t"resource_statistics": false,)",
                          R"(\t\t"communication_statistics": true,)",
                          R"(\t\t"handle_detail": false)",
                          R"(\t},)",
                      }),
                      echo(true));
}

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
