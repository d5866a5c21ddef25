#include "tests/components/report_test.h"

namespace component_tests {
namespace {

constexpr Section kSection = &MonitorProcessor::processActiveSessions;

class ActiveSessions : public ReportTest {
 protected:
  // Sessions that differ from one another by name, site and connection number alone.
  static void openSessions(int count) {
    for (int number = 1; number <= count; ++number) {
      ScriptedClient client = clientNamed("client " + std::to_string(number), 65535);
      TalClientInfo& info = client.info;
      setText(info.sessionName, "app0" + std::to_string(number));
      setText(info.networkAddress, "192.0.2.10");
      info.site = number - 1;
      info.connectionNumber = 31998U + static_cast<std::uint32_t>(number);
      info.processId = 4711;
      info.locksUsed = 1;
      info.transactionState = 19;
      info.recordsRead = 2;
      info.recordsInserted = 3;
      info.recordsDeleted = 4;
      info.recordsUpdated = 4294967295U;
      info.diskAccesses = 6;
      info.cacheAccesses = 7;
      engine().clients.push_back(client);
    }
  }

  static TalClientHandleInfo handleOn(std::string_view fileName) {
    TalClientHandleInfo handle{};
    handle.recordLockType = 'M';
    handle.waitState = 1;
    handle.transactionState = 7;
    setText(handle.fileName, fileName);
    return handle;
  }
};

// The lines of one of openSessions().
std::string textLines(const std::string& name, const std::string& connection,
                      const std::string& site) {
  return lines({
      R"(\tSession Name:        )" + name,
      R"(\tClient ID:           )",
      R"(\tConnection Number:   )" + connection,
      R"(\tTask Number:         65535)",
      R"(\tPID:                 4711)",
      R"(\tSite:                )" + site,
      R"(\tNetwork Address:     192.0.2.10)",
      R"(\tLocks used:          1)",
      R"(\tTransaction State:   Exclusive Lock)",
      R"(\tRecords Read:        2)",
      R"(\tRecords Inserted:    3)",
      R"(\tRecords Deleted:     4)",
      R"(\tRecords Updated:     4294967295)",
      R"(\tDisk Accesses:       6)",
      R"(\tCache Accesses:      7)",
  });
}

std::string jsonLines(const std::string& name, const std::string& connection,
                      const std::string& site) {
  return lines({
      R"(\t\t{)",
      R"(\t\t\t"session_name": ")" + name + R"(",)",
      R"(\t\t\t"client_id": "n/a",)",
      R"(\t\t\t"connection_number": ")" + connection + R"(",)",
      R"(\t\t\t"task_number": 65535,)",
      R"(\t\t\t"PID": 4711,)",
      R"(\t\t\t"site": ")" + site + R"(",)",
      R"(\t\t\t"network_address": "192.0.2.10",)",
      R"(\t\t\t"locks_used": 1,)",
      R"(\t\t\t"transaction_state": "Exclusive Lock",)",
      R"(\t\t\t"records_read": 2,)",
      R"(\t\t\t"records_inserted": 3,)",
      R"(\t\t\t"records_deleted": 4,)",
      R"(\t\t\t"records_updated": 4294967295,)",
      R"(\t\t\t"disk_accesses": 6,)",
      R"(\t\t\t"cache_accesses": 7,)",
  });
}

TEST_F(ActiveSessions, NoSessionsInTextIsTheHeaderAlone) {
  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(=========================)",
                          R"(VANTOR ACTIVE SESSIONS: 0)",
                          R"(=========================)",
                      }),
                      textOf(kSection));
}

TEST_F(ActiveSessions, NoSessionsInJsonIsAnEmptyArray) {
  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(\t"vantor_active_sessions": )",
                          R"(\t{)",
                          R"(\t\t"number_of_vantor_active_sessions":0,)",
                          R"(\t\t"active_session_info": [)",
                          R"(\t\t])",
                          R"(\t},)",
                      }),
                      jsonOf(kSection));
}

// Site 0, 1 and one that has no word; connection numbers up to the last that is shown and beyond.
TEST_F(ActiveSessions, ThreeSessionsInTextAreNumbered) {
  openSessions(3);

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(=========================)",
                          R"(VANTOR ACTIVE SESSIONS: 3)",
                          R"(=========================)",
                          R"(\t=======================)",
                          R"(\tACTIVE SESSION INFO: #1)",
                          R"(\t=======================)",
                      }) + textLines("app01", "31999", "Remote") +
                          lines({
                              R"(\t=======================)",
                              R"(\tACTIVE SESSION INFO: #2)",
                              R"(\t=======================)",
                          }) +
                          textLines("app02", "32000", "Local") +
                          lines({
                              R"(\t=======================)",
                              R"(\tACTIVE SESSION INFO: #3)",
                              R"(\t=======================)",
                          }) +
                          textLines("app03", "n/a", "n/a"),
                      textOf(kSection));
}

TEST_F(ActiveSessions, WithoutHandleDetailJsonObjectsStayOpen) {
  openSessions(3);

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(\t"vantor_active_sessions": )",
                          R"(\t{)",
                          R"(\t\t"number_of_vantor_active_sessions":3,)",
                          R"(\t\t"active_session_info": [)",
                      }) + jsonLines("app01", "31999", "Remote") +
                          jsonLines("app02", "32000", "Local") + jsonLines("app03", "n/a", "n/a") +
                          lines({
                              R"(\t\t])",
                              R"(\t},)",
                          }),
                      jsonOf(kSection));
}

TEST_F(ActiveSessions, WithHandleDetailTextNamesTheFileInTheHandlesHeader) {
  openSessions(1);
  engine().clients[0].handles = {handleOn("/data/orders.dat"), handleOn("")};
  config_.showHandles = true;

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(=========================)",
                          R"(VANTOR ACTIVE SESSIONS: 1)",
                          R"(=========================)",
                          R"(\t=======================)",
                          R"(\tACTIVE SESSION INFO: #1)",
                          R"(\t=======================)",
                      }) + textLines("app01", "31999", "Remote") +
                          lines({
                              R"(\t\t==================)",
                              R"(\t\tSESSION HANDLES: 2)",
                              R"(\t\t==================)",
                              R"(\t\t\t===============================)",
                              R"(\t\t\tHANDLE 1 INFO: /DATA/ORDERS.DAT)",
                              R"(\t\t\t===============================)",
                              R"(\t\t\tOpen Mode:           Normal)",
                              R"(\t\t\tRecord Lock Type:    Multiple Locks)",
                              R"(\t\t\tWait State:          Record)",
                              R"(\t\t\tTransaction State:   n/a)",
                              R"(\t\t\t===============)",
                              R"(\t\t\tHANDLE 2 INFO: )",
                              R"(\t\t\t===============)",
                              R"(\t\t\tOpen Mode:           Normal)",
                              R"(\t\t\tRecord Lock Type:    Multiple Locks)",
                              R"(\t\t\tWait State:          Record)",
                              R"(\t\t\tTransaction State:   n/a)",
                          }),
                      textOf(kSection));
}

TEST_F(ActiveSessions, WithHandleDetailOfThreeJsonObjectsTheLastHasNoComma) {
  openSessions(3);
  engine().clients[0].handles = {handleOn(R"(C:\data\orders.dat)"), handleOn("/b")};
  engine().clients[1].handles = {handleOn("/c")};
  engine().clients[2].handles = {handleOn("/d")};
  engine().clients[2].handles[0].openMode = 252;
  config_.showHandles = true;

  const std::string restOfHandle = lines({
      R"(\t\t\t\t\t\t"record_lock_type": "Multiple Locks",)",
      R"(\t\t\t\t\t\t"wait_state": "Record",)",
      R"(\t\t\t\t\t\t"transaction_state": "n/a")",
  });
  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(\t"vantor_active_sessions": )",
                          R"(\t{)",
                          R"(\t\t"number_of_vantor_active_sessions":3,)",
                          R"(\t\t"active_session_info": [)",
                      }) + jsonLines("app01", "31999", "Remote") +
                          lines({
                              R"(\t\t\t"session_handles": {)",
                              R"(\t\t\t\t"number_of_session_handles": 2,)",
                              R"(\t\t\t\t"session_handles_info": [)",
                              R"(\t\t\t\t\t{)",
                              R"(\t\t\t\t\t\t"handle_file_name":"C:\\data\\orders.dat",)",
                              R"(\t\t\t\t\t\t"open_mode": ["Normal" ],)",
                          }) +
                          restOfHandle +
                          lines({
                              R"(\t\t\t\t\t},)",
                              R"(\t\t\t\t\t{)",
                              R"(\t\t\t\t\t\t"handle_file_name":"/b",)",
                              R"(\t\t\t\t\t\t"open_mode": ["Normal" ],)",
                          }) +
                          restOfHandle +
                          lines({
                              R"(\t\t\t\t\t})",
                              R"(\t\t\t\t])",
                              R"(\t\t\t})",
                              R"(\t\t},)",
                          }) +
                          jsonLines("app02", "32000", "Local") +
                          lines({
                              R"(\t\t\t"session_handles": {)",
                              R"(\t\t\t\t"number_of_session_handles": 1,)",
                              R"(\t\t\t\t"session_handles_info": [)",
                              R"(\t\t\t\t\t{)",
                              R"(\t\t\t\t\t\t"handle_file_name":"/c",)",
                              R"(\t\t\t\t\t\t"open_mode": ["Normal" ],)",
                          }) +
                          restOfHandle +
                          lines({
                              R"(\t\t\t\t\t})",
                              R"(\t\t\t\t])",
                              R"(\t\t\t})",
                              R"(\t\t},)",
                          }) +
                          jsonLines("app03", "n/a", "n/a") +
                          lines({
                              R"(\t\t\t"session_handles": {)",
                              R"(\t\t\t\t"number_of_session_handles": 1,)",
                              R"(\t\t\t\t"session_handles_info": [)",
                              R"(\t\t\t\t\t{)",
                              R"(\t\t\t\t\t\t"handle_file_name":"/d",)",
                              R"(\t\t\t\t\t\t"open_mode": ["Exclusive" ],)",
                          }) +
                          restOfHandle +
                          lines({
                              R"(\t\t\t\t\t})",
                              R"(\t\t\t\t])",
                              R"(\t\t\t})",
                              R"(\t\t})",
                              R"(\t\t])",
                              R"(\t},)",
                          }),
                      jsonOf(kSection));
}

TEST_F(ActiveSessions, ASessionWithoutHandlesInJsonHasAnEmptyArray) {
  openSessions(1);
  switchHandleDetailOnAt("TalFreeZorbClientsData(-1)");

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(\t"vantor_active_sessions": )",
                          R"(\t{)",
                          R"(\t\t"number_of_vantor_active_sessions":1,)",
                          R"(\t\t"active_session_info": [)",
                      }) + jsonLines("app01", "31999", "Remote") +
                          lines({
                              R"(\t\t\t"session_handles": {)",
                              R"(\t\t\t\t"number_of_session_handles": 0,)",
                              R"(\t\t\t\t"session_handles_info": [)",
                              R"(\t\t\t\t])",
                              R"(\t\t\t})",
                              R"(\t\t})",
                              R"(\t\t])",
                              R"(\t},)",
                          }),
                      jsonOf(kSection));
}

TEST_F(ActiveSessions, AFailingEngineLeavesNoLine) {
  openSessions(2);

  EXPECT_EQ(writtenBeforeFailure(kSection, "TalGetZorbClientInfo", false), "");
  EXPECT_EQ(writtenBeforeFailure(kSection, "TalGetZorbClientsData", true), "");
}

}  // namespace
}  // namespace component_tests
