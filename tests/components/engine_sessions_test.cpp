// VXAMonitorHelper: record-level sessions and their handles.
#include <string>

#include "tests/components/engine_test.h"

namespace component_tests {
namespace {

using Names = std::vector<std::string>;

ScriptedClient clientWith(std::string_view id, std::uint16_t task, std::size_t handles) {
  ScriptedClient client = clientNamed(id, task);
  setText(client.info.sessionName, std::string("session of ").append(id));
  client.handles.resize(handles);
  return client;
}

class EngineSessions : public EngineTest {
 protected:
  EngineSessions() {
    engine().clients = {clientWith("a", 1, 1), clientWith("b", 2, 0), clientWith("c", 3, 2)};
  }

  Names namesOf(bool withHandles) {
    Names names;
    const auto sessions = helper_.getActiveSessionInfoList(withHandles);
    for (const auto& session : *sessions) names.push_back(session->sessionName.toBytes());
    return names;
  }

  static auto releases() { return engine().callsOf("TalFreeZorbClientsData(7)"); }
};

const Names kFirst = {"session of a"};
const Names kFirstAndLast = {"session of a", "session of c"};

TEST_F(EngineSessions, AreReadFromOneSnapshotAndReleased) {
  engine().clients.pop_back();

  EXPECT_EQ(namesOf(true), kFirst);

  EXPECT_EQ(engine().calls, (Calls{
                                "TalGetZorbClientsData(7)",
                                "TalGetZorbClientId(7, 0)",
                                "TalGetZorbClientInfo(7, a/0/1)",
                                "TalGetZorbClientHandlesData(7, a/0/1)",
                                "TalGetZorbClientHandleInfo(7, a/0/1, 0)",
                                "TalGetZorbClientId(7, 1)",
                                "TalGetZorbClientInfo(7, b/0/2)",
                                "TalGetZorbClientHandlesData(7, b/0/2)",
                                "TalFreeZorbClientsData(7)",
                            }));
}

TEST_F(EngineSessions, ACountOf3Where7008AnswersAtIndex1GivesOneSession) {
  engine().statuses["TalGetZorbClientId(7, 1)"] = 7008;

  EXPECT_EQ(namesOf(false), kFirst);
  EXPECT_EQ(releases(), 1);
}

TEST_F(EngineSessions, AClientThatWentMeanwhileIsMissing) {
  engine().statuses["TalGetZorbClientInfo(7, b/0/2)"] = 7010;

  EXPECT_EQ(namesOf(false), kFirstAndLast);
  EXPECT_EQ(releases(), 1);
}

TEST_F(EngineSessions, WithoutHandleDetailEverySessionHasAnEmptyHandleList) {
  const auto sessions = helper_.getActiveSessionInfoList(false);

  ASSERT_EQ(sessions->size(), 3U);
  for (const auto& session : *sessions) {
    ASSERT_TRUE(session->handles);
    EXPECT_TRUE(session->handles->isEmpty());
  }
  EXPECT_EQ(engine().callsOf("TalGetZorbClientHandlesData(7, a/0/1)"), 0);
}

TEST_F(EngineSessions, WithHandleDetailASessionWithoutHandlesIsNotListed) {
  EXPECT_EQ(namesOf(true), kFirstAndLast);
}

TEST_F(EngineSessions, AClientThatGoesDuringItsHandleWalkIsNotListedWithHandleDetail) {
  engine().statuses["TalGetZorbClientHandleInfo(7, c/0/3, 1)"] = 7010;

  EXPECT_EQ(namesOf(true), kFirst);
  EXPECT_EQ(releases(), 1);
}

TEST_F(EngineSessions, AHandleWalkEndsAt7008WithWhatItHas) {
  engine().statuses["TalGetZorbClientHandleInfo(7, c/0/3, 1)"] = 7008;

  EXPECT_EQ(helper_.getSessionFileHandleInfoList(&engine().clients[2].id)->size(), 1U);
}

TEST_F(EngineSessions, AHandleWalkThatMeets7010IsEmpty) {
  engine().statuses["TalGetZorbClientHandleInfo(7, c/0/3, 1)"] = 7010;

  EXPECT_TRUE(helper_.getSessionFileHandleInfoList(&engine().clients[2].id)->isEmpty());
}

TEST_F(EngineSessions, AnyOtherStatusIsAnErrorAndReleasesTheSnapshotOnce) {
  const std::map<std::string, Statuses> errors = {
      {"TalGetZorbClientId(7, 1)",                {7010, 7015, 7103, 1, -1, -32768}      },
      {"TalGetZorbClientInfo(7, b/0/2)",          {7008, 7015, 7103, 1, -1, -32768}      },
      {"TalGetZorbClientHandlesData(7, a/0/1)",   {7008, 7010, 7015, 7103, 1, -1, -32768}},
      {"TalGetZorbClientHandleInfo(7, c/0/3, 1)", {7015, 7103, 1, -1, -32768}            },
  };

  for (const auto& [call, statuses] : errors) {
    for (const std::int16_t status : statuses) {
      engine().calls.clear();
      engine().statuses = {
          {call, status}
      };
      EXPECT_EQ(failureOf([&] { helper_.getActiveSessionInfoList(true); }), status) << call;
      EXPECT_EQ(releases(), 1) << call;
      EXPECT_EQ(engine().calls.back(), "TalFreeZorbClientsData(7)");
    }
  }
}

TEST_F(EngineSessions, WithoutASnapshotNothingIsReleased) {
  for (const std::int16_t status : Statuses{7008, 7010, 7015, 7103, -1}) {
    engine().statuses["TalGetZorbClientsData"] = status;
    EXPECT_EQ(failureOf([&] { helper_.getActiveSessionInfoList(true); }), status);
  }
  EXPECT_EQ(releases(), 0);
}

TEST_F(EngineSessions, AreReleasedOnceWhenMemoryRunsOut) {
  for (const std::string call :
       {"TalGetZorbClientId(7, 1)", "TalGetZorbClientInfo(7, b/0/2)",
        "TalGetZorbClientHandlesData(7, c/0/3)", "TalGetZorbClientHandleInfo(7, c/0/3, 1)"}) {
    engine().calls.clear();
    runOutOfMemoryAt(call);
    EXPECT_THROW(helper_.getActiveSessionInfoList(true), std::bad_alloc);
    EXPECT_EQ(releases(), 1) << call;
  }
}

TEST_F(EngineSessions, AreAllocatedByWhatIsReadNotByAnAnnouncedCount) {
  engine().clients = {clientWith("a", 1, 1)};
  engine().counts["TalGetZorbClientsData"] = 4294967295U;
  engine().counts["TalGetZorbClientHandlesData"] = 4294967295U;
  EXPECT_EQ(namesOf(true), kFirst);

  engine().clients.clear();
  EXPECT_EQ(namesOf(true), Names{});
  EXPECT_EQ(releases(), 2);
}

TEST_F(EngineSessions, CarryEveryFieldOfTheClient) {
  ScriptedClient client = clientNamed("client", 65535);
  client.id.first = 65534;
  setText(client.info.networkAddress, "192.0.2.10");
  setText(client.info.sessionName, "app01");
  client.info.recordsDeleted = 1;
  client.info.recordsUpdated = 2;
  client.info.recordsInserted = 3;
  client.info.recordsRead = 4;
  client.info.diskAccesses = 5;
  client.info.cacheAccesses = 6;
  client.info.locksUsed = 4294967295U;
  client.info.processId = 4294967294U;
  client.info.connectionNumber = 4294967293U;
  engine().clients = {client};

  const auto sessions = helper_.getActiveSessionInfoList(false);

  ASSERT_EQ(sessions->size(), 1U);
  const SessionInfo& session = *sessions->get(0);
  EXPECT_EQ(session.networkAddress, "192.0.2.10");
  EXPECT_EQ(session.sessionName, "app01");
  EXPECT_EQ(session.recordsDeleted, 1);
  EXPECT_EQ(session.recordsUpdated, 2);
  EXPECT_EQ(session.recordsInserted, 3);
  EXPECT_EQ(session.recordsRead, 4);
  EXPECT_EQ(session.diskAccesses, 5);
  EXPECT_EQ(session.cacheAccesses, 6);
  EXPECT_EQ(session.locksUsed, 4294967295L);
  EXPECT_EQ(session.processId, 4294967294L);
  EXPECT_EQ(session.connectionNumber, 4294967293L);
  EXPECT_EQ(session.clientId->text, "client");
  EXPECT_EQ(session.clientId->first, 65534);
  EXPECT_EQ(session.clientId->task, 65535);
}

TEST_F(EngineSessions, UseTheLow16BitsOfSiteAndTransactionStateWithTheirSign) {
  struct Row {
    std::int32_t code;
    int expected;
  };
  const Row rows[] = {
      {1,            1     },
      {0x10001,      1     },
      {0x10000 + 19, 19    },
      {1019,         1019  },
      {0x7FFF,       32767 },
      {0x8000,       -32768},
      {0xFFFF,       -1    },
      {-1,           -1    },
  };

  for (const Row& row : rows) {
    engine().clients[0].info.site = row.code;
    engine().clients[0].info.transactionState = row.code;
    const auto sessions = helper_.getActiveSessionInfoList(false);
    EXPECT_EQ(sessions->get(0)->site, row.expected) << row.code;
    EXPECT_EQ(sessions->get(0)->transactionState, row.expected) << row.code;
  }
}

TEST_F(EngineSessions, TextsThatFillTheirFieldsEndWithThem) {
  ScriptedClient client = clientNamed(std::string(12, 'i'), 1);
  setText(client.info.networkAddress, std::string(80, 'n'));
  setText(client.info.sessionName, std::string(256, 's'));
  client.info.reserved = 0x4141;  // follows the address
  client.handles.resize(1);
  setText(client.handles[0].fileName, std::string(1024, 'f'));
  engine().clients = {client};

  const auto sessions = helper_.getActiveSessionInfoList(true);

  ASSERT_EQ(sessions->size(), 1U);
  const SessionInfo& session = *sessions->get(0);
  EXPECT_EQ(session.clientId->text.toBytes(), std::string(12, 'i'));
  EXPECT_EQ(session.networkAddress.toBytes(), std::string(80, 'n'));
  EXPECT_EQ(session.sessionName.toBytes(), std::string(256, 's'));
  EXPECT_EQ(session.handles->get(0)->fileName.toBytes(), std::string(1024, 'f'));
}

TEST_F(EngineSessions, HandlesKeepEachCodeInItsPlace) {
  TalClientHandleInfo info{};
  info.openMode = 255;
  info.recordLockType = 83;
  info.waitState = 2;
  info.transactionState = 1019;
  setText(info.fileName, "/a");
  engine().clients[0].handles = {info, info};
  engine().clients[0].handles[1].transactionState = 65535;

  const auto handles = helper_.getSessionFileHandleInfoList(&engine().clients[0].id);

  ASSERT_EQ(handles->size(), 2U);
  const SessionHandleInfo& handle = *handles->get(0);
  EXPECT_EQ(handle.openMode, 255);
  EXPECT_EQ(handle.recordLockType, 83);
  EXPECT_EQ(handle.waitState, 2);
  EXPECT_EQ(handle.transactionState, 1019);
  EXPECT_EQ(handle.fileName, "/a");
  EXPECT_EQ(handles->get(1)->transactionState, -1);
}

}  // namespace
}  // namespace component_tests
