#include "tal/interface/layout.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace tal::interface {
namespace {

// A structure whose bytes are all set, so that each one that is not written shows.
template <typename Structure>
Structure dirty() {
  Structure structure;
  std::memset(&structure, 0x5a, sizeof(structure));
  return structure;
}

Gauge gauge(std::uint32_t from) { return {from, from + 1, static_cast<std::int32_t>(from) + 2}; }

TEST(Layout, PutsUsageInTheOrderOfTheWords) {
  Usage usage;
  Gauge* const gauges[] = {&usage.users,        &usage.files,   &usage.handles,
                           &usage.transactions, &usage.clients, &usage.workerThreads,
                           &usage.locks};
  for (std::uint32_t at = 0; at < std::size(gauges); ++at) *gauges[at] = gauge(at * 3);
  usage.dataMb = gauge(20);
  usage.sessions = gauge(23);
  usage.upTimeSeconds = 26;
  auto out = dirty<TalUsage>();

  fill(out, usage);

  std::uint32_t words[27];
  static_assert(sizeof(words) == sizeof(out));
  std::memcpy(words, &out, sizeof(words));
  for (std::uint32_t word = 0; word < 27; ++word) EXPECT_EQ(words[word], word);
}

TEST(Layout, KeepsNegativeMaxima) {
  Usage usage;
  usage.sessions.maximum = -1;
  auto out = dirty<TalUsage>();

  fill(out, usage);

  EXPECT_EQ(out.sessions.maximum, -1);
  EXPECT_EQ(out.users.maximum, 0);
}

TEST(Layout, PutsCommunicationInTheOrderOfTheWords) {
  Communication communication{
      0, {1,  2, 3},
       gauge(4), gauge(7), 11, 12, {{13, 14, 15, 16}}
  };
  auto out = dirty<TalCommStat>();

  fill(out, communication);

  std::uint32_t words[17];
  std::memcpy(words, &out, sizeof(words));
  EXPECT_EQ(out.protocolCount, 1U);
  words[10] = 10;
  for (std::uint32_t word = 0; word < 17; ++word) EXPECT_EQ(words[word], word);
}

TEST(Layout, HoldsSixtyFourProtocols) {
  Communication communication;
  for (std::uint32_t code = 0; code < 70; ++code)
    communication.protocols.push_back({code, 0, 0, 0});
  auto out = dirty<TalCommStat>();

  fill(out, communication);

  EXPECT_EQ(out.protocolCount, 64U);
  EXPECT_EQ(out.protocols[63].code, 63U);
}

TEST(Layout, ClosesTextsThatFillTheirFields) {
  const std::string endless(2000, 'x');
  auto file = dirty<TalFileHandleInfo>();
  auto clientHandle = dirty<TalClientHandleInfo>();
  auto client = dirty<TalClientInfo>();
  auto id = dirty<tagTALCLIENTID>();
  auto connection = dirty<TalSqlConnectionInfo>();
  Client from;
  from.id = from.networkAddress = from.sessionName = endless;

  fill(file, FileHandle{1, 2, 3, 4, 5, endless});
  fill(clientHandle, ClientHandle{1, 2, 3, 4, endless});
  fill(client, from);
  fill(id, from);
  fill(connection, SqlConnection{endless, endless, endless, endless, endless, 1, 2, 3});

  EXPECT_EQ(file.clientName, std::string(69, 'x'));
  EXPECT_EQ(clientHandle.fileName, std::string(1023, 'x'));
  EXPECT_EQ(client.networkAddress, std::string(79, 'x'));
  EXPECT_EQ(client.sessionName, std::string(255, 'x'));
  EXPECT_EQ(id.text, std::string(11, 'x'));
  EXPECT_EQ(connection.clientHost, std::string(64, 'x'));
  EXPECT_EQ(connection.dataSource, std::string(32, 'x'));
  EXPECT_EQ(connection.application, std::string(255, 'x'));
  EXPECT_EQ(connection.networkAddress, std::string(65, 'x'));
  EXPECT_EQ(connection.userName, std::string(65, 'x'));
}

TEST(Layout, CarriesEveryNumber) {
  Client client{"anna", 1, 2, 3, "address", 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, "session", {}};
  auto clientInfo = dirty<TalClientInfo>();
  auto id = dirty<tagTALCLIENTID>();
  auto fileInfo = dirty<TalFileInfo>();
  auto handle = dirty<TalFileHandleInfo>();
  auto connection = dirty<TalSqlConnectionInfo>();

  fill(clientInfo, client);
  fill(id, client);
  fill(fileInfo, OpenFile{"name", 1, 2, 3, 4, 5, {}});
  fill(handle, FileHandle{1, 2, 3, 4, 5, "client"});
  fill(connection, SqlConnection{"a", "b", "c", "d", "e", 1, 2, 3});

  const std::uint32_t numbers[] = {clientInfo.recordsDeleted,  clientInfo.recordsUpdated,
                                   clientInfo.recordsInserted, clientInfo.recordsRead,
                                   clientInfo.diskAccesses,    clientInfo.cacheAccesses,
                                   clientInfo.locksUsed};
  for (std::uint32_t at = 0; at < std::size(numbers); ++at) EXPECT_EQ(numbers[at], at + 5);
  EXPECT_EQ(clientInfo.site, 3);
  EXPECT_EQ(clientInfo.reserved, 4);
  EXPECT_EQ(clientInfo.transactionState, 12);
  EXPECT_EQ(clientInfo.processId, 13U);
  EXPECT_EQ(clientInfo.connectionNumber, 14U);
  EXPECT_EQ(id.first, 1);
  EXPECT_EQ(id.task, 2);
  EXPECT_EQ(fileInfo.pageSize, 1U);
  EXPECT_EQ(fileInfo.readOnly, 2);
  EXPECT_EQ(fileInfo.recordLocks, 3);
  EXPECT_EQ(fileInfo.transactionLock, 4);
  EXPECT_EQ(fileInfo.sizeKb, 5U);
  EXPECT_EQ(handle.clientIndex, 1U);
  EXPECT_EQ(handle.openMode, 2);
  EXPECT_EQ(handle.recordLockType, 3);
  EXPECT_EQ(handle.waitState, 4);
  EXPECT_EQ(handle.transactionState, 5);
  EXPECT_EQ(connection.status, 1);
  EXPECT_EQ(connection.periodMs, 2U);
  EXPECT_EQ(connection.totalTime, 3U);
}

}  // namespace
}  // namespace tal::interface
