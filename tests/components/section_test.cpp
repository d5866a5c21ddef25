// What a section writes in situations to which no whole run of the program comes easily. What it
// writes otherwise stands in tests/program/golden.
#include "tests/components/report_test.h"

namespace component_tests {
namespace {

constexpr Section kFiles = &MonitorProcessor::processActiveFiles;
constexpr Section kSessions = &MonitorProcessor::processActiveSessions;
constexpr Section kResources = &MonitorProcessor::processResourceStats;

class SectionTest : public ReportTest {
 protected:
  static void openFile() {
    ScriptedFile& file = engine().files.emplace_back();
    file.name = R"(C:\data\orders.dat)";
    file.info.pageSize = 4096;
    file.info.readOnly = 'N';
    file.info.recordLocks = 'Y';
    file.info.transactionLock = 'N';
    file.info.sizeKb = 64;
  }

  std::string upTimeAfter(std::uint32_t seconds) {
    engine().usage.upTimeSeconds = seconds;
    const std::string text = textOf(kResources);
    const std::string before = "Engine Uptime: ";
    const std::size_t at = text.find(before) + before.size();
    return text.substr(at, text.find('\n', at) - at);
  }
};

TEST_F(SectionTest, AFileWithoutHandlesInTextHasTheirHeaderAlone) {
  openFile();
  switchHandleDetailOnAt("TalFreeOpenFilesData(-1)");

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(================)",
                          R"(ACTIVE FILES:  1)",
                          R"(================)",
                          R"(\t=====================================)",
                          R"(\tACTIVE FILE INFO:  C:\DATA\ORDERS.DAT)",
                          R"(\t=====================================)",
                          R"(\tPage Size:             4096)",
                          R"(\tRead-Only Flag:        No)",
                          R"(\tRecord Locks:          Yes)",
                          R"(\tTransaction Lock:      No)",
                          R"(\tPhysical File Size KB: 64)",
                          R"(\t\t===============)",
                          R"(\t\tFILE HANDLES: 0)",
                          R"(\t\t===============)",
                      }),
                      textOf(kFiles));
}

TEST_F(SectionTest, AFileWithoutHandlesInJsonHasNoHandleInfo) {
  openFile();
  switchHandleDetailOnAt("TalFreeOpenFilesData(-1)");

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(\t"active_files": )",
                          R"(\t{)",
                          R"(\t\t"number_of_active_files": 1,)",
                          R"(\t\t"active_files_info": [)",
                          R"(\t\t\t{)",
                          R"(\t\t\t\t"active_file_name": "C:\\data\\orders.dat",)",
                          R"(\t\t\t\t"page_size": 4096,)",
                          R"(\t\t\t\t"read_only_flag": false,)",
                          R"(\t\t\t\t"read_locks": true,)",
                          R"(\t\t\t\t"transaction_lock": false,)",
                          R"(\t\t\t\t"physical_file_size_kb": 64,)",
                          R"(\t\t\t\t"file_handles": 0,)",
                          R"(\t\t\t})",
                          R"(\t\t])",
                          R"(\t},)",
                      }),
                      jsonOf(kFiles));
}

TEST_F(SectionTest, ASessionWithoutHandlesInJsonHasAnEmptyArray) {
  engine().clients.push_back(clientNamed("client"));
  switchHandleDetailOnAt("TalFreeZorbClientsData(-1)");

  const std::string json = jsonOf(kSessions);

  const std::string handles = lines({
      R"(\t\t\t"session_handles": {)",
      R"(\t\t\t\t"number_of_session_handles": 0,)",
      R"(\t\t\t\t"session_handles_info": [)",
      R"(\t\t\t\t])",
      R"(\t\t\t})",
      R"(\t\t})",
      R"(\t\t])",
      R"(\t},)",
  });
  EXPECT_TRUE(json.ends_with(",\n" + handles)) << json;
}

TEST_F(SectionTest, UptimeInDaysAndHours) {
  EXPECT_EQ(upTimeAfter(0), "0 day  00:00:00 (hh:mm:ss)");
  EXPECT_EQ(upTimeAfter(172799), "1 day  23:59:59 (hh:mm:ss)");
  EXPECT_EQ(upTimeAfter(172800), "2 days  00:00:00 (hh:mm:ss)");
  EXPECT_EQ(upTimeAfter(4294967295U), "49710 days  06:28:15 (hh:mm:ss)");
}

}  // namespace
}  // namespace component_tests
