#include "tests/tal/conformance.h"

#include <atomic>
#include <set>
#include <thread>

namespace tal::test {
namespace {

constexpr int kThreads = 24;
const char* kNameOfNoFile = "no engine lists a file of this name";
// Identifier text that fills its field without a NUL: nothing that an engine hands out.
const tagTALCLIENTID kNoClient{
    {'?', '?', '?', '?', '?', '?', '?', '?', '?', '?', '?', '?'},
    1, 1
};

TEST_P(Conformance, AnswersWithSingleStructures) {
  const std::int32_t handle = connection();
  std::uint8_t flag = 0;
  std::int32_t first = 0;
  std::int32_t second = 0;
  std::int32_t third = 0;
  std::int32_t engineType = 0;
  TalVersion version{};
  TalUsage usage{};
  TalCommStat statistics{};

  EXPECT_EQ(TalGetEngineInformation(handle, &flag, &first, &second, &third, &engineType), 0);
  EXPECT_EQ(TalGetZorbVersion(handle, &version), 0);
  EXPECT_EQ(TalGetZorbUsageEx2(handle, &usage), 0);
  EXPECT_EQ(TalGetZorbCommStatEx(handle, &statistics), 0);

  EXPECT_EQ(engineType, 0);
  EXPECT_GT(version.major, 0);
  EXPECT_LE(statistics.protocolCount, static_cast<std::uint32_t>(TAL_PROTOCOL_COUNT));
}

TEST_P(Conformance, ListsFilesWithTheirHandles) {
  const std::int32_t handle = connection();

  const std::vector<ListedFile> files = listFiles(handle);

  std::set<std::string> names;
  for (const ListedFile& file : files) {
    EXPECT_TRUE(names.insert(file.name).second) << file.name;
    EXPECT_TRUE(isClean(file.name.c_str(), file.name.size() + 1)) << file.name;
    for (const TalFileHandleInfo& entry : file.handles) EXPECT_TRUE(isClean(entry.clientName));
  }
}

TEST_P(Conformance, ListsClientsWithTheirHandles) {
  const std::int32_t handle = connection();

  const std::vector<ListedClient> clients = listClients(handle);

  std::set<std::string> identifiers;
  for (const ListedClient& client : clients) {
    EXPECT_TRUE(identifiers.emplace(bytesOf(client.id)).second) << client.id.text;
    EXPECT_TRUE(isClean(client.id.text));
    EXPECT_TRUE(isClean(client.info.networkAddress));
    EXPECT_TRUE(isClean(client.info.sessionName));
    for (const TalClientHandleInfo& entry : client.handles) EXPECT_TRUE(isClean(entry.fileName));
  }
}

TEST_P(Conformance, ListsSqlConnections) {
  const std::int32_t handle = connection();

  const std::vector<TalSqlConnectionInfo> connections = listSqlConnections(handle);

  for (const TalSqlConnectionInfo& connection : connections) {
    EXPECT_TRUE(isClean(connection.clientHost));
    EXPECT_TRUE(isClean(connection.dataSource));
    EXPECT_TRUE(isClean(connection.application));
    EXPECT_TRUE(isClean(connection.networkAddress));
    EXPECT_TRUE(isClean(connection.userName));
  }
}

TEST_P(Conformance, EndsListsBeyondTheLastEntry) {
  const std::int32_t handle = connection();
  std::uint32_t files = 0;
  std::uint32_t clients = 0;
  std::uint32_t connections = 0;
  ASSERT_EQ(TalGetOpenFilesData(handle, &files), 0);
  ASSERT_EQ(TalGetZorbClientsData(handle, &clients), 0);
  ASSERT_EQ(TalGetSQLConnectionsData(handle, &connections), 0);
  char name[TAL_NAME_SIZE];
  tagTALCLIENTID id;
  TalSqlConnectionInfo info;

  for (const std::uint32_t beyond : {0U, 1U, 1000000U}) {
    std::uint32_t size = sizeof(name);
    EXPECT_EQ(TalGetOpenFileName(handle, files + beyond, &size, name), TAL_STATUS_NO_ENTRY);
    EXPECT_EQ(TalGetZorbClientId(handle, clients + beyond, &id), TAL_STATUS_NO_ENTRY);
    EXPECT_EQ(TalGetSQLConnectionInfo2(handle, connections + beyond, &info), TAL_STATUS_NO_ENTRY);
  }
}

TEST_P(Conformance, TellsThatAFileIsClosed) {
  const std::int32_t handle = connection();
  std::uint32_t count = 0;
  ASSERT_EQ(TalGetOpenFilesData(handle, &count), 0);
  TalFileInfo info;
  TalFileHandleInfo handleInfo;

  EXPECT_EQ(TalGetFileInfo2(handle, kNameOfNoFile, &info), TAL_STATUS_FILE_CLOSED);
  EXPECT_EQ(TalGetFileHandlesData(handle, kNameOfNoFile, &count), TAL_STATUS_FILE_CLOSED);
  EXPECT_EQ(TalGetFileHandleInfo(handle, kNameOfNoFile, 0, &handleInfo), TAL_STATUS_FILE_CLOSED);
}

TEST_P(Conformance, TellsThatAClientIsGone) {
  const std::int32_t handle = connection();
  std::uint32_t count = 0;
  ASSERT_EQ(TalGetZorbClientsData(handle, &count), 0);
  TalClientInfo info;
  TalClientHandleInfo handleInfo;

  EXPECT_EQ(TalGetZorbClientInfo(handle, &kNoClient, &info), TAL_STATUS_CLIENT_GONE);
  EXPECT_EQ(TalGetZorbClientHandlesData(handle, &kNoClient, &count), TAL_STATUS_CLIENT_GONE);
  EXPECT_EQ(TalGetZorbClientHandleInfo(handle, &kNoClient, 0, &handleInfo), TAL_STATUS_CLIENT_GONE);
}

TEST_P(Conformance, KeepsSnapshotsStable) {
  const std::int32_t handle = connection();
  const std::int32_t other = connection();
  std::uint32_t files = 0;
  std::uint32_t clients = 0;
  std::uint32_t connections = 0;
  ASSERT_EQ(TalGetOpenFilesData(handle, &files), 0);
  ASSERT_EQ(TalGetZorbClientsData(handle, &clients), 0);
  ASSERT_EQ(TalGetSQLConnectionsData(handle, &connections), 0);
  const std::string filesBefore = bytesOf(readFiles(handle, files));
  const std::string clientsBefore = bytesOf(readClients(handle, clients));
  const std::string connectionsBefore = bytesOf(readSqlConnections(handle, connections));

  listFiles(other);
  listClients(other);
  listSqlConnections(other);

  EXPECT_EQ(bytesOf(readFiles(handle, files)), filesBefore);
  EXPECT_EQ(bytesOf(readClients(handle, clients)), clientsBefore);
  EXPECT_EQ(bytesOf(readSqlConnections(handle, connections)), connectionsBefore);
}

TEST_P(Conformance, HasNoSnapshotBeforeItWasTakenAndAfterItsRelease) {
  const std::int32_t handle = connection();

  for (const NamedCall& named : callsOnASnapshot()) {
    EXPECT_EQ(named.call(handle), code(Status::kNoSnapshot)) << named.name;
  }
  listFiles(handle);
  listClients(handle);
  listSqlConnections(handle);
  for (const NamedCall& named : callsOnASnapshot()) {
    EXPECT_EQ(named.call(handle), code(Status::kNoSnapshot)) << named.name;
  }
}

TEST_P(Conformance, ReplacesASnapshotThatIsTakenAgain) {
  const std::int32_t handle = connection();
  std::uint32_t count = 0;

  EXPECT_EQ(TalGetOpenFilesData(handle, &count), 0);
  EXPECT_EQ(TalGetOpenFilesData(handle, &count), 0);

  readFiles(handle, count);
  EXPECT_EQ(TalFreeOpenFilesData(handle), 0);
  EXPECT_EQ(TalFreeOpenFilesData(handle), code(Status::kNoSnapshot));
}

TEST_P(Conformance, RefreshesAgain) {
  const std::int32_t handle = connection();

  for (int refresh = 0; refresh < 2; ++refresh) {
    TalUsage usage{};
    TalCommStat statistics{};
    listFiles(handle);
    listClients(handle);
    listSqlConnections(handle);
    EXPECT_EQ(TalGetZorbUsageEx2(handle, &usage), 0);
    EXPECT_EQ(TalGetZorbCommStatEx(handle, &statistics), 0);
  }
}

TEST_P(Conformance, ServesTwoConnectionsAtOnce) {
  const std::int32_t first = connection();
  const std::int32_t second = connection();
  TalVersion version{};

  EXPECT_NE(first, second);
  listClients(first);
  listClients(second);
  EXPECT_EQ(TalDisconnect(first), 0);

  EXPECT_EQ(TalGetZorbVersion(first, &version), code(Status::kUnknownHandle));
  EXPECT_EQ(TalGetZorbVersion(second, &version), 0);
}

TEST_P(Conformance, ServesThreadsWithConnectionsOfTheirOwn) {
  const Target target = GetParam().target();
  std::atomic<int> served = 0;

  std::vector<std::jthread> threads(kThreads);
  for (std::jthread& thread : threads) {
    thread = std::jthread([&] {
      const std::int32_t handle = connected(target);
      listFiles(handle);
      listClients(handle);
      listSqlConnections(handle);
      if (TalDisconnect(handle) == 0) ++served;
    });
  }
  threads.clear();

  EXPECT_EQ(served, kThreads);
}

TEST_P(Conformance, DisconnectsOnce) {
  const std::int32_t handle = connection();

  EXPECT_EQ(TalDisconnect(handle), 0);

  EXPECT_EQ(TalDisconnect(handle), code(Status::kUnknownHandle));
}

TEST_P(Conformance, ForgetsItsConnectionsWhenStopped) {
  const std::int32_t handle = connection();

  ASSERT_EQ(TalStop(nullptr), 0);
  ASSERT_EQ(TalStart(nullptr), 0);

  for (const NamedCall& named : callsOnAHandle()) {
    EXPECT_EQ(named.call(handle), code(Status::kUnknownHandle)) << named.name;
  }
  EXPECT_NE(connection(), handle);
}

TEST_P(Conformance, RefusesNullPointers) {
  const std::int32_t handle = connection();
  std::uint32_t count = 0;

  EXPECT_EQ(TalGetZorbVersion(handle, nullptr), code(Status::kBadArgument));
  EXPECT_EQ(TalGetZorbUsageEx2(handle, nullptr), code(Status::kBadArgument));
  EXPECT_EQ(TalGetZorbCommStatEx(handle, nullptr), code(Status::kBadArgument));
  EXPECT_EQ(TalGetOpenFilesData(handle, nullptr), code(Status::kBadArgument));
  EXPECT_EQ(TalGetZorbClientsData(handle, nullptr), code(Status::kBadArgument));
  EXPECT_EQ(TalGetSQLConnectionsData(handle, nullptr), code(Status::kBadArgument));
  ASSERT_EQ(TalGetZorbClientsData(handle, &count), 0);
  EXPECT_EQ(TalGetZorbClientId(handle, 0, nullptr), code(Status::kBadArgument));
}

}  // namespace

}  // namespace tal::test
