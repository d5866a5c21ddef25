#include "tests/components/report_test.h"

namespace component_tests {
namespace {

constexpr Section kSection = &MonitorProcessor::processActiveFiles;

TalFileHandleInfo handleOf(std::uint32_t clientIndex, std::string_view clientName) {
  TalFileHandleInfo handle{};
  handle.clientIndex = clientIndex;
  handle.recordLockType = 'N';
  setText(handle.clientName, clientName);
  return handle;
}

class ActiveFiles : public ReportTest {
 protected:
  // Two files; the second has two handles.
  static void openTwo() {
    engine().files.resize(2);
    ScriptedFile& first = engine().files[0];
    first.name = R"(C:\data\orders.dat)";
    first.info.pageSize = 4096;
    first.info.readOnly = 'N';
    first.info.recordLocks = 'Y';
    first.info.transactionLock = 'N';
    first.info.sizeKb = 64;
    ScriptedFile& second = engine().files[1];
    second.name = "/data/größe.dat";
    second.info.pageSize = 512;
    second.info.sizeKb = 4294967295U;
    second.info.readOnly = 'Y';
    second.handles = {handleOf(3, "app01"), handleOf(4294967295U, "a \"quoted\" name")};
    second.handles[1].openMode = 237;
    second.handles[1].recordLockType = 'S';
    second.handles[1].waitState = 2;
    second.handles[1].transactionState = 1019;
  }
};

TEST_F(ActiveFiles, NoOpenFilesInTextIsTheHeaderAlone) {
  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(================)",
                          R"(ACTIVE FILES:  0)",
                          R"(================)",
                      }),
                      textOf(kSection));
}

TEST_F(ActiveFiles, NoOpenFilesInJsonIsAnEmptyArray) {
  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(\t"active_files": )",
                          R"(\t{)",
                          R"(\t\t"number_of_active_files": 0,)",
                          R"(\t\t"active_files_info": [)",
                          R"(\t\t])",
                          R"(\t},)",
                      }),
                      jsonOf(kSection));
}

TEST_F(ActiveFiles, WithoutHandleDetailTextShowsTheFilesAlone) {
  openTwo();

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(================)",
                          R"(ACTIVE FILES:  2)",
                          R"(================)",
                          R"(\t=====================================)",
                          R"(\tACTIVE FILE INFO:  C:\DATA\ORDERS.DAT)",
                          R"(\t=====================================)",
                          R"(\tPage Size:             4096)",
                          R"(\tRead-Only Flag:        No)",
                          R"(\tRecord Locks:          Yes)",
                          R"(\tTransaction Lock:      No)",
                          R"(\tPhysical File Size KB: 64)",
                          R"(\t==================================)",
                          R"(\tACTIVE FILE INFO:  /DATA/GRößE.DAT)",
                          R"(\t==================================)",
                          R"(\tPage Size:             512)",
                          R"(\tRead-Only Flag:        Yes)",
                          R"(\tRecord Locks:          n/a)",
                          R"(\tTransaction Lock:      n/a)",
                          R"(\tPhysical File Size KB: 4294967295)",
                      }),
                      textOf(kSection));
}

TEST_F(ActiveFiles, WithoutHandleDetailJsonKeepsTheCommaOfTheLastLine) {
  openTwo();

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(\t"active_files": )",
                          R"(\t{)",
                          R"(\t\t"number_of_active_files": 2,)",
                          R"(\t\t"active_files_info": [)",
                          R"(\t\t\t{)",
                          R"(\t\t\t\t"active_file_name": "C:\\data\\orders.dat",)",
                          R"(\t\t\t\t"page_size": 4096,)",
                          R"(\t\t\t\t"read_only_flag": false,)",
                          R"(\t\t\t\t"read_locks": true,)",
                          R"(\t\t\t\t"transaction_lock": false,)",
                          R"(\t\t\t\t"physical_file_size_kb": 64,)",
                          R"(\t\t\t},)",
                          R"(\t\t\t{)",
                          R"(\t\t\t\t"active_file_name": "/data/größe.dat",)",
                          R"(\t\t\t\t"page_size": 512,)",
                          R"(\t\t\t\t"read_only_flag": true,)",
                          R"(\t\t\t\t"read_locks": n/a,)",
                          R"(\t\t\t\t"transaction_lock": n/a,)",
                          R"(\t\t\t\t"physical_file_size_kb": 4294967295,)",
                          R"(\t\t\t})",
                          R"(\t\t])",
                          R"(\t},)",
                      }),
                      jsonOf(kSection));
}

TEST_F(ActiveFiles, WithHandleDetailTextNumbersTheHandles) {
  openTwo();
  config_.showHandles = true;

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(================)",
                          R"(ACTIVE FILES:  1)",
                          R"(================)",
                          R"(\t==================================)",
                          R"(\tACTIVE FILE INFO:  /DATA/GRößE.DAT)",
                          R"(\t==================================)",
                          R"(\tPage Size:             512)",
                          R"(\tRead-Only Flag:        Yes)",
                          R"(\tRecord Locks:          n/a)",
                          R"(\tTransaction Lock:      n/a)",
                          R"(\tPhysical File Size KB: 4294967295)",
                          R"(\t\t===============)",
                          R"(\t\tFILE HANDLES: 2)",
                          R"(\t\t===============)",
                          R"(\t\t\t===============)",
                          R"(\t\t\tHANDLE INFO: #1)",
                          R"(\t\t\t===============)",
                          R"(\t\t\tClient Index:      3)",
                          R"(\t\t\tClient Name:       app01)",
                          R"(\t\t\tOpen Mode:         Normal)",
                          R"(\t\t\tRecord Lock Type:  None)",
                          R"(\t\t\tWait State:        None)",
                          R"(\t\t\tTransaction State: None)",
                          R"(\t\t\t===============)",
                          R"(\t\t\tHANDLE INFO: #2)",
                          R"(\t\t\t===============)",
                          R"(\t\t\tClient Index:      4294967295)",
                          R"(\t\t\tClient Name:       a "quoted" name)",
                          R"(\t\t\tOpen Mode:         Verify, shared locking)",
                          R"(\t\t\tRecord Lock Type:  Single Lock)",
                          R"(\t\t\tWait State:        File)",
                          R"(\t\t\tTransaction State: Concurrent Lock)",
                      }),
                      textOf(kSection));
}

TEST_F(ActiveFiles, WithHandleDetailJsonGivesOpenMode237AQuoteShort) {
  openTwo();
  config_.showHandles = true;

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(\t"active_files": )",
                          R"(\t{)",
                          R"(\t\t"number_of_active_files": 1,)",
                          R"(\t\t"active_files_info": [)",
                          R"(\t\t\t{)",
                          R"(\t\t\t\t"active_file_name": "/data/größe.dat",)",
                          R"(\t\t\t\t"page_size": 512,)",
                          R"(\t\t\t\t"read_only_flag": true,)",
                          R"(\t\t\t\t"read_locks": n/a,)",
                          R"(\t\t\t\t"transaction_lock": n/a,)",
                          R"(\t\t\t\t"physical_file_size_kb": 4294967295,)",
                          R"(\t\t\t\t"file_handles": 2,)",
                          R"(\t\t\t\t"handle_info": [)",
                          R"(\t\t\t\t\t{)",
                          R"(\t\t\t\t\t\t"client_index": 3,)",
                          R"(\t\t\t\t\t\t"client_name": "app01",)",
                          R"(\t\t\t\t\t\t"open_mode": [ "Normal" ],)",
                          R"(\t\t\t\t\t\t"record_lock_type": "None",)",
                          R"(\t\t\t\t\t\t"wait_state": "None",)",
                          R"(\t\t\t\t\t\t"transaction_state" :"None")",
                          R"(\t\t\t\t\t},)",
                          R"(\t\t\t\t\t{)",
                          R"(\t\t\t\t\t\t"client_index": 4294967295,)",
                          R"(\t\t\t\t\t\t"client_name": "a "quoted" name",)",
                          R"(\t\t\t\t\t\t"open_mode": [ "Verify, "shared locking" ],)",
                          R"(\t\t\t\t\t\t"record_lock_type": "Single Lock",)",
                          R"(\t\t\t\t\t\t"wait_state": "File",)",
                          R"(\t\t\t\t\t\t"transaction_state" :"Concurrent Lock")",
                          R"(\t\t\t\t\t})",
                          R"(\t\t\t\t])",
                          R"(\t\t\t})",
                          R"(\t\t])",
                          R"(\t},)",
                      }),
                      jsonOf(kSection));
}

TEST_F(ActiveFiles, AFileWithoutHandlesInTextHasTheirHeaderAlone) {
  openTwo();
  engine().files.resize(1);
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
                      textOf(kSection));
}

TEST_F(ActiveFiles, AFileWithoutHandlesInJsonHasNoHandleInfo) {
  openTwo();
  engine().files.resize(1);
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
                      jsonOf(kSection));
}

TEST_F(ActiveFiles, AFailingEngineLeavesNoLine) {
  openTwo();

  EXPECT_EQ(writtenBeforeFailure(kSection, "TalGetFileInfo2", false), "");
  EXPECT_EQ(writtenBeforeFailure(kSection, "TalGetOpenFilesData", true), "");
}

}  // namespace
}  // namespace component_tests
