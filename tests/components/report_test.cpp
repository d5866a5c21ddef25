#include "tests/components/report_test.h"

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

void ReportTest::switchHandleDetailOnAt(const std::string& call) {
  engine().onCall = [this, call](const std::string& made) {
    if (made == call) config_.showHandles = true;
  };
}

}  // namespace component_tests
