#include "tests/components/report_test.h"

#include "engine/VXAMonitorHelper.h"

namespace component_tests {

using testing_support::readFile;

ReportTest::ReportTest() {
  config_.fileOutput = true;
  config_.logFileName = orv::String((folder_ / "log").string());
}

std::string ReportTest::write(Section section, bool json) {
  MonitorProcessor processor(&config_, json);
  processor.startMonitoring(true, json);
  processor.createOutputFormatter();  // empties the log file
  (processor.*section)(json);
  return readFile(folder_ / "log");
}

std::string ReportTest::writtenBeforeFailure(Section section, const std::string& call, bool json) {
  constexpr std::int16_t kStatus = 7103;
  MonitorProcessor processor(&config_, json);
  processor.startMonitoring(true, json);
  processor.createOutputFormatter();  // empties the log file
  engine().statuses[call] = kStatus;
  try {
    (processor.*section)(json);
    ADD_FAILURE() << "no exception";
  } catch (const VXAException& failure) {
    EXPECT_EQ(failure.getErrorCode(), kStatus);
  }
  return readFile(folder_ / "log");
}

void ReportTest::switchHandleDetailOnAt(const std::string& call) {
  engine().onCall = [this, call](const std::string& made) {
    if (made == call) config_.showHandles = true;
  };
}

}  // namespace component_tests
