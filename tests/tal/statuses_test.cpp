#include <gtest/gtest.h>

#include <string>

#include "tests/tal/interface.h"

namespace tal::test {
namespace {

const Target kDemo{"sim:demo", "", ""};

TEST(Statuses, NothingIsServedBeforeTheStart) {
  std::int32_t handle = 0;

  EXPECT_EQ(connect(kDemo, handle), code(Status::kNotStarted));
  EXPECT_EQ(TalStop(nullptr), code(Status::kNotStarted));
  for (const std::int32_t each : {-1, 0, 1}) {
    for (const NamedCall& named : callsOnAHandle()) {
      EXPECT_EQ(named.call(each), code(Status::kNotStarted)) << named.name;
    }
  }
}

TEST(Statuses, StartingTwiceIsStartingOnce) {
  EXPECT_EQ(TalStart(nullptr), 0);
  EXPECT_EQ(TalStart(nullptr), 0);

  EXPECT_EQ(TalStop(nullptr), 0);
  EXPECT_EQ(TalStop(nullptr), code(Status::kNotStarted));
}

TEST(Statuses, HandlesMustBeOpen) {
  const Started started;

  for (const std::int32_t handle : {-2147483647 - 1, -2, 0, 2147483647}) {
    for (const NamedCall& named : callsOnAHandle()) {
      EXPECT_EQ(named.call(handle), code(Status::kUnknownHandle)) << named.name;
    }
  }
}

TEST(Statuses, TheLocalEngineNeedsNoConnecting) {
  const Started started;

  EXPECT_GT(listFiles(-1).size(), 0U);
  EXPECT_GT(listClients(-1).size(), 0U);
  EXPECT_GT(listSqlConnections(-1).size(), 0U);
  EXPECT_EQ(TalDisconnect(-1), 0);
  EXPECT_EQ(TalDisconnect(-1), 0);
}

TEST(Statuses, ConnectingNeedsAllItsArguments) {
  const Started started;
  std::int32_t handle = 77;

  EXPECT_EQ(TalConnectServer(nullptr, "", "", &handle), code(Status::kBadArgument));
  EXPECT_EQ(TalConnectServer("sim:demo", nullptr, "", &handle), code(Status::kBadArgument));
  EXPECT_EQ(TalConnectServer("sim:demo", "", nullptr, &handle), code(Status::kBadArgument));
  EXPECT_EQ(TalConnectServer("sim:demo", "", "", nullptr), code(Status::kBadArgument));
  EXPECT_EQ(TalConnectServer("nowhere:", "", "", &handle), code(Status::kUnknownScheme));
  EXPECT_EQ(handle, 77);
}

TEST(Statuses, ConnectingTakesTextsOfAtMost255Bytes) {
  const Started started;
  const std::string longest(255, 'x');
  const std::string tooLong(256, 'x');
  std::int32_t handle = 0;

  EXPECT_EQ(connect({"sim:demo", longest, longest}, handle), 0);
  EXPECT_EQ(connect({longest, "", ""}, handle), code(Status::kUnknownScheme));
  EXPECT_EQ(connect({tooLong, "", ""}, handle), code(Status::kBadArgument));
  EXPECT_EQ(connect({"sim:demo", tooLong, ""}, handle), code(Status::kBadArgument));
  EXPECT_EQ(connect({"sim:demo", "", tooLong}, handle), code(Status::kBadArgument));
}

TEST(Statuses, EngineInformationNeedsAllItsPlaces) {
  const Started started;
  std::uint8_t flag = 0;
  std::int32_t number = 0;

  EXPECT_EQ(TalGetEngineInformation(-1, nullptr, &number, &number, &number, &number),
            code(Status::kBadArgument));
  for (int missing = 0; missing < 4; ++missing) {
    std::int32_t* places[] = {&number, &number, &number, &number};
    places[missing] = nullptr;
    EXPECT_EQ(TalGetEngineInformation(-1, &flag, places[0], places[1], places[2], places[3]),
              code(Status::kBadArgument));
  }
}

TEST(Statuses, LookUpsInFilesNeedAllTheirArguments) {
  const Started started;
  std::uint32_t number = 0;
  char name[TAL_NAME_SIZE] = {};
  ASSERT_EQ(TalGetOpenFilesData(-1, &number), 0);
  std::uint32_t size = sizeof(name);
  ASSERT_EQ(TalGetOpenFileName(-1, 0, &size, name), 0);
  TalFileInfo info;
  TalFileHandleInfo handleInfo;

  EXPECT_EQ(TalGetOpenFileName(-1, 0, nullptr, name), code(Status::kBadArgument));
  EXPECT_EQ(TalGetOpenFileName(-1, 0, &size, nullptr), code(Status::kBadArgument));
  EXPECT_EQ(TalGetFileInfo2(-1, nullptr, &info), code(Status::kBadArgument));
  EXPECT_EQ(TalGetFileInfo2(-1, name, nullptr), code(Status::kBadArgument));
  EXPECT_EQ(TalGetFileHandlesData(-1, nullptr, &number), code(Status::kBadArgument));
  EXPECT_EQ(TalGetFileHandlesData(-1, name, nullptr), code(Status::kBadArgument));
  EXPECT_EQ(TalGetFileHandleInfo(-1, nullptr, 0, &handleInfo), code(Status::kBadArgument));
  EXPECT_EQ(TalGetFileHandleInfo(-1, name, 0, nullptr), code(Status::kBadArgument));
}

TEST(Statuses, LookUpsInClientsAndConnectionsNeedAllTheirArguments) {
  const Started started;
  std::uint32_t number = 0;
  tagTALCLIENTID id{};
  ASSERT_EQ(TalGetZorbClientsData(-1, &number), 0);
  ASSERT_EQ(TalGetSQLConnectionsData(-1, &number), 0);
  ASSERT_EQ(TalGetZorbClientId(-1, 0, &id), 0);
  TalClientInfo info;
  TalClientHandleInfo handleInfo;

  EXPECT_EQ(TalGetZorbClientId(-1, 0, nullptr), code(Status::kBadArgument));
  EXPECT_EQ(TalGetZorbClientInfo(-1, nullptr, &info), code(Status::kBadArgument));
  EXPECT_EQ(TalGetZorbClientInfo(-1, &id, nullptr), code(Status::kBadArgument));
  EXPECT_EQ(TalGetZorbClientHandlesData(-1, nullptr, &number), code(Status::kBadArgument));
  EXPECT_EQ(TalGetZorbClientHandlesData(-1, &id, nullptr), code(Status::kBadArgument));
  EXPECT_EQ(TalGetZorbClientHandleInfo(-1, nullptr, 0, &handleInfo), code(Status::kBadArgument));
  EXPECT_EQ(TalGetZorbClientHandleInfo(-1, &id, 0, nullptr), code(Status::kBadArgument));
  EXPECT_EQ(TalGetSQLConnectionInfo2(-1, 0, nullptr), code(Status::kBadArgument));
}

TEST(Statuses, NamesKeepToTheirBuffer) {
  const Started started;
  std::uint32_t count = 0;
  ASSERT_EQ(TalGetOpenFilesData(-1, &count), 0);
  char name[8];

  for (const std::uint32_t offered : {1U, 2U, 7U}) {
    std::string untouched(sizeof(name), '~');
    untouched.copy(name, sizeof(name));
    std::uint32_t size = offered;
    EXPECT_EQ(TalGetOpenFileName(-1, 0, &size, name), 0);
    const std::string written = std::string("C:\\SHOP\\").substr(0, offered - 1) + '\0';
    EXPECT_EQ(std::string(name, sizeof(name)), untouched.replace(0, offered, written));
    EXPECT_EQ(size, offered - 1);
  }
  std::uint32_t none = 0;
  EXPECT_EQ(TalGetOpenFileName(-1, 0, &none, name), code(Status::kBadArgument));
}

TEST(Statuses, NamesLongerThanANameCanBeAreNotListed) {
  const Started started;
  std::uint32_t count = 0;
  ASSERT_EQ(TalGetOpenFilesData(-1, &count), 0);
  const std::string name(100'000, 'x');
  TalFileInfo info;

  EXPECT_EQ(TalGetFileInfo2(-1, name.c_str(), &info), TAL_STATUS_FILE_CLOSED);
  EXPECT_EQ(TalGetFileInfo2(-1, "", &info), TAL_STATUS_FILE_CLOSED);
}

}  // namespace
}  // namespace tal::test
