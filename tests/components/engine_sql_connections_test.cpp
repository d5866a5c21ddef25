// VXAMonitorHelper: SQL connections.
#include <string>

#include "tests/components/engine_test.h"

namespace component_tests {
namespace {

class EngineSqlConnections : public EngineTest {
 protected:
  EngineSqlConnections() { engine().connections.resize(3); }

  static auto releases() { return engine().callsOf("TalFreeSQLConnectionsData(7)"); }
};

TEST_F(EngineSqlConnections, AreReadFromOneSnapshotAndReleased) {
  engine().connections.resize(2);

  EXPECT_EQ(helper_.getConnInfoList()->size(), 2U);

  EXPECT_EQ(engine().calls, (Calls{
                                "TalGetSQLConnectionsData(7)",
                                "TalGetSQLConnectionInfo2(7, 0)",
                                "TalGetSQLConnectionInfo2(7, 1)",
                                "TalFreeSQLConnectionsData(7)",
                            }));
}

TEST_F(EngineSqlConnections, ACountOf3Where7008AnswersAtIndex1GivesOneConnection) {
  engine().statuses["TalGetSQLConnectionInfo2(7, 1)"] = 7008;

  EXPECT_EQ(helper_.getConnInfoList()->size(), 1U);
  EXPECT_EQ(releases(), 1);
}

TEST_F(EngineSqlConnections, AnyOtherStatusIsAnErrorAndReleasesTheSnapshotOnce) {
  for (const std::int16_t status : Statuses{7010, 7015, 7103, 1, -1, -32768}) {
    engine().calls.clear();
    engine().statuses["TalGetSQLConnectionInfo2(7, 1)"] = status;
    EXPECT_EQ(failureOf([&] { helper_.getConnInfoList(); }), status);
    EXPECT_EQ(releases(), 1);
  }
}

TEST_F(EngineSqlConnections, WithoutASnapshotNothingIsReleased) {
  for (const std::int16_t status : Statuses{7008, 7010, 7015, 7103, -1}) {
    engine().statuses["TalGetSQLConnectionsData"] = status;
    EXPECT_EQ(failureOf([&] { helper_.getConnInfoList(); }), status);
  }
  EXPECT_EQ(releases(), 0);
}

TEST_F(EngineSqlConnections, AreReleasedOnceWhenMemoryRunsOut) {
  runOutOfMemoryAt("TalGetSQLConnectionInfo2(7, 1)");

  EXPECT_THROW(helper_.getConnInfoList(), std::bad_alloc);

  EXPECT_EQ(releases(), 1);
}

TEST_F(EngineSqlConnections, AreAllocatedByWhatIsReadNotByAnAnnouncedCount) {
  engine().counts["TalGetSQLConnectionsData"] = 4294967295U;
  EXPECT_EQ(helper_.getConnInfoList()->size(), 3U);

  engine().connections.clear();
  EXPECT_EQ(helper_.getConnInfoList()->size(), 0U);
  EXPECT_EQ(releases(), 2);
}

TEST_F(EngineSqlConnections, CarryEveryField) {
  TalSqlConnectionInfo& info = engine().connections[0];
  setText(info.clientHost, "host");
  setText(info.dataSource, "source");
  setText(info.application, "application");
  setText(info.networkAddress, "192.0.2.10");
  setText(info.userName, "user");
  info.status = 65535;
  info.periodMs = 4294967295U;
  info.totalTime = 4294967294U;

  const auto connections = helper_.getConnInfoList();

  const ConnInfo& connection = *connections->get(0);
  EXPECT_EQ(connection.clientHost, "host");
  EXPECT_EQ(connection.dataSource, "source");
  EXPECT_EQ(connection.application, "application");
  EXPECT_EQ(connection.networkAddress, "192.0.2.10");
  EXPECT_EQ(connection.userName, "user");
  EXPECT_EQ(connection.status, -1) << "a 16-bit code with its sign";
  EXPECT_EQ(connection.periodMs, 4294967295L);
  EXPECT_EQ(connection.totalTime, 4294967294L);
}

TEST_F(EngineSqlConnections, TextsThatFillTheirFieldsEndWithThem) {
  TalSqlConnectionInfo& info = engine().connections[0];
  setText(info.clientHost, std::string(65, 'h'));
  setText(info.dataSource, std::string(33, 'd'));
  setText(info.application, std::string(256, 'a'));
  setText(info.networkAddress, std::string(66, 'n'));
  setText(info.userName, std::string(66, 'u'));
  info.status = 0x4141;  // follows the user name

  const auto connections = helper_.getConnInfoList();

  const ConnInfo& connection = *connections->get(0);
  EXPECT_EQ(connection.clientHost.toBytes(), std::string(65, 'h'));
  EXPECT_EQ(connection.dataSource.toBytes(), std::string(33, 'd'));
  EXPECT_EQ(connection.application.toBytes(), std::string(256, 'a'));
  EXPECT_EQ(connection.networkAddress.toBytes(), std::string(66, 'n'));
  EXPECT_EQ(connection.userName.toBytes(), std::string(66, 'u'));
}

}  // namespace
}  // namespace component_tests
