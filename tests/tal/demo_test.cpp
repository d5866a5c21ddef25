#include "tal/sim/read_scenario.h"

#include <gtest/gtest.h>

#include <set>

#include "tal/sim/sim.h"

namespace tal::sim {
namespace {

// Every code that the first three refreshes of the demo serve.
struct Codes {
  std::set<int> flags;
  std::set<int> openModes;
  std::set<int> recordLocks;
  std::set<int> waitStates;
  std::set<int> transactionStates;
  std::set<int> sites;
  std::set<int> statuses;
  std::set<std::uint32_t> protocols;

  template <typename Handle>
  void noteHandle(const Handle& handle) {
    openModes.insert(handle.openMode);
    recordLocks.insert(handle.recordLockType);
    waitStates.insert(handle.waitState);
    transactionStates.insert(handle.transactionState);
  }
};

SimulatedEngine demo() { return SimulatedEngine(parseScenario(kDemo, "demo")); }

void noteRefresh(SimulatedEngine& engine, Codes& byFile, Codes& byClient) {
  for (const Call call : {Call::kGetOpenFilesData, Call::kGetZorbClientsData,
                          Call::kGetSQLConnectionsData, Call::kGetZorbCommStatEx}) {
    EXPECT_EQ(engine.answerInstead(call), Status::kSuccess);
  }
  for (const OpenFile& file : engine.openFiles()) {
    for (const int flag : {file.readOnly, file.recordLocks, file.transactionLock}) {
      byFile.flags.insert(flag);
    }
    for (const FileHandle& handle : file.handles) byFile.noteHandle(handle);
  }
  for (const Client& client : engine.clients()) {
    byClient.sites.insert(client.site);
    for (const ClientHandle& handle : client.handles) byClient.noteHandle(handle);
  }
  for (const SqlConnection& connection : engine.sqlConnections()) {
    byClient.statuses.insert(connection.status);
  }
  for (const Protocol& protocol : engine.communication().protocols) {
    byClient.protocols.insert(protocol.code);
  }
}

TEST(Demo, HasEveryCode) {
  SimulatedEngine engine = demo();
  Codes byFile;
  Codes byClient;

  for (int refresh = 0; refresh < 3; ++refresh) noteRefresh(engine, byFile, byClient);

  const std::set<int> openModes = {0,   1,   236, 237, 238, 239, 240, 244,
                                   245, 246, 247, 248, 252, 253, 254, 255};
  EXPECT_EQ(byFile.flags, (std::set<int>{0, 78, 89}));
  for (const Codes& codes : {byFile, byClient}) {
    EXPECT_EQ(codes.openModes, openModes);
    EXPECT_EQ(codes.recordLocks, (std::set<int>{0, 77, 78, 83}));
    EXPECT_EQ(codes.waitStates, (std::set<int>{0, 1, 2, 3}));
    EXPECT_EQ(codes.transactionStates, (std::set<int>{0, 2, 19, 1019}));
  }
  EXPECT_EQ(byClient.sites, (std::set<int>{0, 1, 2}));
  EXPECT_EQ(byClient.statuses, (std::set<int>{0, 1, 2}));
  EXPECT_EQ(byClient.protocols, (std::set<std::uint32_t>{1, 4, 7, 12}));
}

TEST(Demo, AgreesWithItself) {
  SimulatedEngine engine = demo();

  for (int refresh = 0; refresh < 3; ++refresh) {
    for (const Call call :
         {Call::kGetOpenFilesData, Call::kGetZorbClientsData, Call::kGetZorbUsageEx2}) {
      EXPECT_EQ(engine.answerInstead(call), Status::kSuccess);
    }
    const Usage usage = engine.usage();
    std::multiset<std::string> byFile;
    std::multiset<std::string> byClient;
    for (const OpenFile& file : engine.openFiles()) {
      for (const FileHandle& handle : file.handles) {
        byFile.insert(file.name + " " + handle.clientName + " " + std::to_string(handle.openMode));
      }
    }
    for (const Client& client : engine.clients()) {
      for (const ClientHandle& handle : client.handles) {
        byClient.insert(handle.fileName + " " + client.id + " " + std::to_string(handle.openMode));
      }
    }

    EXPECT_EQ(byFile, byClient) << refresh;
    EXPECT_EQ(usage.handles.current, byFile.size()) << refresh;
    EXPECT_EQ(usage.files.current, engine.openFiles().size()) << refresh;
    EXPECT_EQ(usage.clients.current, engine.clients().size()) << refresh;
  }
}

TEST(Demo, HasASessionWithoutHandles) {
  SimulatedEngine engine = demo();

  const std::vector<Client> clients = engine.clients();

  EXPECT_EQ(std::ranges::count_if(clients, [](const Client& each) { return each.handles.empty(); }),
            1);
}

TEST(Demo, HasMaximaOfEveryKind) {
  SimulatedEngine engine = demo();

  const Usage usage = engine.usage();

  EXPECT_GT(usage.users.maximum, 0);
  EXPECT_EQ(usage.files.maximum, 0);
  EXPECT_LT(usage.sessions.maximum, 0);
}

}  // namespace
}  // namespace tal::sim
