#include "tests/components/report_test.h"

namespace component_tests {
namespace {

constexpr Section kSection = &MonitorProcessor::processActiveConnections;

class SqlConnections : public ReportTest {
 protected:
  static void connectAs(std::string_view userName, std::uint16_t status, std::uint32_t periodMs) {
    TalSqlConnectionInfo info{};
    setText(info.userName, userName);
    setText(info.clientHost, "host");
    setText(info.networkAddress, "192.0.2.10");
    setText(info.application, "application");
    setText(info.dataSource, "source");
    info.status = status;
    info.periodMs = periodMs;
    info.totalTime = 5230;
    engine().connections.push_back(info);
  }
};

TEST_F(SqlConnections, NoConnectionsInTextIsTheHeaderAlone) {
  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(=========================================)",
                          R"(SQL CONNECTION MANAGER ACTIVE SESSIONS: 0)",
                          R"(=========================================)",
                      }),
                      textOf(kSection));
}

TEST_F(SqlConnections, NoConnectionsInJsonIsAnEmptyArray) {
  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(\t"sql_connection_manager_active_sessions": )",
                          R"(\t{)",
                          R"(\t\t"sql_connection_manager_number_of_active_sessions": 0,)",
                          R"(\t\t"session_info": [)",
                          R"(\t\t])",
                          R"(\t},)",
                      }),
                      jsonOf(kSection));
}

TEST_F(SqlConnections, TextNumbersThemAndShowsAnIdlePeriodOf0) {
  connectAs("admin", 0, 0);
  connectAs("guest", 1, 4294967295U);

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(=========================================)",
                          R"(SQL CONNECTION MANAGER ACTIVE SESSIONS: 2)",
                          R"(=========================================)",
                          R"(\t=================)",
                          R"(\tSESSION INFO: # 1)",
                          R"(\t=================)",
                          R"(\tUser Name:              admin)",
                          R"(\tClient Host Name:       host)",
                          R"(\tNetwork Address:        192.0.2.10)",
                          R"(\tClient Application:     application)",
                          R"(\tData Source Name:       source)",
                          R"(\tConnection Status:      Idle)",
                          R"(\tActive/Idle Period(ms): 0)",
                          R"(\tTotal Connection Time:  5230)",
                          R"(\t=================)",
                          R"(\tSESSION INFO: # 2)",
                          R"(\t=================)",
                          R"(\tUser Name:              guest)",
                          R"(\tClient Host Name:       host)",
                          R"(\tNetwork Address:        192.0.2.10)",
                          R"(\tClient Application:     application)",
                          R"(\tData Source Name:       source)",
                          R"(\tConnection Status:      Active)",
                          R"(\tActive/Idle Period(ms): 4294967295)",
                          R"(\tTotal Connection Time:  5230)",
                      }),
                      textOf(kSection));
}

TEST_F(SqlConnections, OneConnectionInJsonClosesWithoutAComma) {
  connectAs("admin", 0, 0);

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(\t"sql_connection_manager_active_sessions": )",
                          R"(\t{)",
                          R"(\t\t"sql_connection_manager_number_of_active_sessions": 1,)",
                          R"(\t\t"session_info": [)",
                          R"(\t\t{)",
                          R"(\t\t\t"user_name": "admin",)",
                          R"(\t\t\t"client_host_name": "host",)",
                          R"(\t\t\t"network_address": "192.0.2.10",)",
                          R"(\t\t\t"client_application": "application",)",
                          R"(\t\t\t"data_source_name": "source",)",
                          R"(\t\t\t"connection_status": "Idle",)",
                          R"_(\t\t\t"active/idle_Period(ms)": 0,)_",
                          R"(\t\t\t"total_connection_time": 5230)",
                          R"(\t\t})",
                          R"(\t\t])",
                          R"(\t},)",
                      }),
                      jsonOf(kSection));
}

// Nothing is escaped, not even a double quote.
TEST_F(SqlConnections, OfThreeConnectionsInJsonTheFirstTwoCloseWithAComma) {
  connectAs(R"(a "quoted" name)", 0, 1);
  connectAs(R"(back\slash)", 1, 2);
  connectAs("", 65535, 3);

  const std::string rest = lines({
      R"(\t\t\t"client_host_name": "host",)",
      R"(\t\t\t"network_address": "192.0.2.10",)",
      R"(\t\t\t"client_application": "application",)",
      R"(\t\t\t"data_source_name": "source",)",
  });
  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(\t"sql_connection_manager_active_sessions": )",
                          R"(\t{)",
                          R"(\t\t"sql_connection_manager_number_of_active_sessions": 3,)",
                          R"(\t\t"session_info": [)",
                          R"(\t\t{)",
                          R"(\t\t\t"user_name": "a "quoted" name",)",
                      }) + rest +
                          lines({
                              R"(\t\t\t"connection_status": "Idle",)",
                              R"_(\t\t\t"active/idle_Period(ms)": 1,)_",
                              R"(\t\t\t"total_connection_time": 5230)",
                              R"(\t\t},)",
                              R"(\t\t{)",
                              R"(\t\t\t"user_name": "back\slash",)",
                          }) +
                          rest +
                          lines({
                              R"(\t\t\t"connection_status": "Active",)",
                              R"_(\t\t\t"active/idle_Period(ms)": 2,)_",
                              R"(\t\t\t"total_connection_time": 5230)",
                              R"(\t\t},)",
                              R"(\t\t{)",
                              R"(\t\t\t"user_name": "",)",
                          }) +
                          rest +
                          lines({
                              R"(\t\t\t"connection_status": "Dying",)",
                              R"_(\t\t\t"active/idle_Period(ms)": 3,)_",
                              R"(\t\t\t"total_connection_time": 5230)",
                              R"(\t\t})",
                              R"(\t\t])",
                              R"(\t},)",
                          }),
                      jsonOf(kSection));
}

TEST_F(SqlConnections, AFailingEngineLeavesNoLine) {
  connectAs("admin", 0, 0);

  EXPECT_EQ(writtenBeforeFailure(kSection, "TalGetSQLConnectionInfo2", false), "");
  EXPECT_EQ(writtenBeforeFailure(kSection, "TalGetSQLConnectionsData", true), "");
}

}  // namespace
}  // namespace component_tests
