// A whole run: what it asks of the engine and writes around its sections.
#include <algorithm>

#include "app/Failures.h"
#include "engine/VXAMonitorHelper.h"
#include "monitor/JsonFrame.h"
#include "orv/Exception.h"
#include "output/ProcessWide.h"
#include "tests/components/engine_test.h"
#include "tests/components/recorded_sleep.h"
#include "tests/components/report_test.h"
#include "tests/components/utc_time.h"
#include "tests/support/masking.h"
#include "tests/support/redirected_streams.h"

namespace component_tests {
namespace {

using testing_support::CapturedOutput;

using testing_support::maskTimes;

// On the console, with the active files alone.
class MonitorRun : public ComponentTest {
 protected:
  MonitorRun() {
    config_.server = "dbhost1";
    config_.refreshRate = 10;
    config_.outputType = "CONSOLE";
    config_.consoleOutput = true;
    config_.showFiles = true;
    engine().version = {15, 21, 16};
  }

  // Everything on standard output.
  std::string runOnce(bool json) {
    const CapturedOutput output;
    MonitorProcessor(&config_, json).startMonitoring(true, json);
    return maskTimes(output.text());
  }

  const UtcTime utc_;
  ConfigData config_;
};

TEST_F(MonitorRun, OnceInTextIsTheHeaderAndOneRefresh) {
  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(<Ddd Mmm 00 00:00:00 UTC 0000>)",
                          R"()",
                          R"(begin of settings)",
                          R"(Server:              dbhost1)",
                          R"(Refresh Rate(secs):  10)",
                          R"(Refresh Limit:       0)",
                          R"(Output:              CONSOLE)",
                          R"(File Name:           )",
                          R"(//Monitor Activities)",
                          R"(Files:               Yes)",
                          R"(Sessions:            No)",
                          R"(Connections:         No)",
                          R"(Resource Stats:      No)",
                          R"(Communication Stats: No)",
                          R"(Handle Detail:       No)",
                          R"(end of settings)",
                          R"()",
                          R"(=========================)",
                          R"(ENGINE VERSION: 15.21.016)",
                          R"(=========================)",
                          R"(======================================)",
                          R"(*** START RECORD 00/00/00 00:00 XM ***)",
                          R"(======================================)",
                          R"(================)",
                          R"(ACTIVE FILES:  0)",
                          R"(================)",
                      }),
                      runOnce(false));
  EXPECT_TRUE(sleeping().slices.empty());
}

TEST_F(MonitorRun, OnceInJsonIsOneDocument) {
  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"()",
                          R"({)",
                          R"(\t"description": "Monitor Utility",)",
                          R"(\t"title": "JSON output",)",
                          R"(\t"version": "product 15.21.016.000",)",
                          R"(\t"copyright": "(c) somebody",)",
                          R"(\t"time": "0000-00-00T00:00:00+0000",)",
                          R"(\t"user_configuration":)",
                          R"(\t{)",
                          R"(\t\t"server": "dbhost1",)",
                          R"_(\t\t"refresh_rate(secs)": 10,)_",
                          R"(\t\t"refresh_limit": 0,)",
                          R"(\t\t"output": "CONSOLE",)",
                          R"(\t\t"file_name": "",)",
                          R"(\t\t"files_statistics": true,)",
                          R"(\t\t"sessions_statistics": false,)",
                          R"(\t\t"connections_statistics": false,)",
                          R"(\t\t"resource_statistics": false,)",
                          R"(\t\t"communication_statistics": false,)",
                          R"(\t\t"handle_detail": false)",
                          R"(\t},)",
                          R"(\t"engine_version": "15.21.016",)",
                          R"(\t"start_record_time": "0000-00-00T00:00:00+0000",)",
                          R"(\t"active_files": )",
                          R"(\t{)",
                          R"(\t\t"number_of_active_files": 0,)",
                          R"(\t\t"active_files_info": [)",
                          R"(\t\t])",
                          R"(\t},)",
                          R"(})",
                      }),
                      runOnce(true));
}

TEST_F(MonitorRun, SectionsComeInTheirFixedOrderAndThenTheEngineIsLeft) {
  config_.user = "user";
  config_.password = "password";
  config_.showSessions = config_.showConnections = true;
  config_.showResources = config_.showCommunications = true;

  runOnce(false);

  EXPECT_EQ(engine().calls, (Calls{
                                "TalStart(null)",
                                "TalConnectServer(dbhost1, user, password)",
                                "TalGetEngineInformation(7)",
                                "TalGetZorbVersion(7)",
                                "TalGetOpenFilesData(7)",
                                "TalFreeOpenFilesData(7)",
                                "TalGetZorbClientsData(7)",
                                "TalFreeZorbClientsData(7)",
                                "TalGetSQLConnectionsData(7)",
                                "TalFreeSQLConnectionsData(7)",
                                "TalGetZorbUsageEx2(7)",
                                "TalGetZorbCommStatEx(7)",
                                "TalDisconnect(7)",
                                "TalStop(null)",
                            }));
}

TEST_F(MonitorRun, ASectionThatIsSwitchedOffAsksNothing) {
  config_.showFiles = false;

  runOnce(false);

  EXPECT_EQ(engine().calls.back(), "TalStop(null)");
  EXPECT_EQ(std::count_if(engine().calls.begin(), engine().calls.end(),
                          [](const std::string& call) { return call.starts_with("TalGet"); }),
            2)
      << "the engine's type and version";
}

TEST_F(MonitorRun, AFailedConnectEndsItBehindTheSettings) {
  engine().statuses["TalConnectServer"] = 7103;
  const CapturedOutput output;

  EXPECT_THROW(MonitorProcessor(&config_, true).startMonitoring(true, true), VXAException);

  EXPECT_TRUE(output.text().ends_with("\t\t\"handle_detail\": false\n\t},\n"));
  EXPECT_EQ(engine().callsOf("TalStop(null)"), 1);
}

TEST_F(MonitorRun, BothOutputsGetTheSameLines) {
  const testing_support::TemporaryFolder folder;
  config_.fileOutput = true;
  config_.logFileName = orv::String((folder / "log").string());
  const CapturedOutput output;

  MonitorProcessor(&config_, false).startMonitoring(true, false);

  EXPECT_FALSE(output.text().empty());
  EXPECT_EQ(output.text(), testing_support::readFile(folder / "log"));
}

// As when the log's file system reports a lost write only at the closing.
TEST_F(MonitorRun, AFailureBehindTheDocumentAddsNoBrace) {
  const testing_support::TemporaryFolder folder;
  config_.fileOutput = true;
  config_.logFileName = orv::String((folder / "log").string());
  for (const bool consoleOutput : {true, false}) {
    config_.consoleOutput = consoleOutput;
    displayJSONHeader(true, 0, 1);
    runOnce(true);
    m_JSON = true;

    reportDescription("lost at the closing");

    EXPECT_EQ(printed(), "") << consoleOutput;
  }
}

TEST_F(MonitorRun, ALogFileThatCannotBeCreatedEndsItBeforeTheEngineIsAsked) {
  config_.consoleOutput = false;
  config_.fileOutput = true;
  config_.logFileName = "";

  EXPECT_THROW(runOnce(false), orv::io::IoException);

  EXPECT_EQ(engine().calls, Calls{});
}

}  // namespace
}  // namespace component_tests
