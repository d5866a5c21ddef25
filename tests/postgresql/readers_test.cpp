// Readers of result rows on tables of a test's own, sane and hostile ones.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "tal/failure.h"
#include "tal/postgresql/clients.h"
#include "tal/postgresql/communication.h"
#include "tal/postgresql/open_files.h"
#include "tal/postgresql/sql_connections.h"
#include "tal/postgresql/usage.h"
#include "tests/sql/table.h"

namespace tal::postgresql {
namespace {

using testing_support::Cell;
using testing_support::Table;

constexpr std::uint32_t kLargest = std::numeric_limits<std::uint32_t>::max();

std::vector<Cell> fileRow(const char* database, const char* relation, const char* name,
                          const char* process) {
  return {database, relation, name,  "8192", "78", "89",   "78",
          "16",     process,  "254", "77",   "2",  "1019", "me@app"};
}

TEST(OpenFilesReaderTest, GroupsHandlesByRelation) {
  Table rows({fileRow("1", "10", "a", "7"), fileRow("1", "10", "a", "8"),
              fileRow("1", "11", "b", "7"), fileRow("1", "10", "a", "9")});

  const std::vector<OpenFile> files = readOpenFiles(rows);

  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(files[0].name, "a");
  EXPECT_EQ(files[0].pageSize, 8192U);
  EXPECT_EQ(files[0].readOnly, flag::kNo);
  EXPECT_EQ(files[0].recordLocks, flag::kYes);
  EXPECT_EQ(files[0].transactionLock, flag::kNo);
  EXPECT_EQ(files[0].sizeKb, 16U);
  ASSERT_EQ(files[0].handles.size(), 3U);
  EXPECT_EQ(files[0].handles[2].clientIndex, 9U);
  EXPECT_EQ(files[0].handles[0].openMode, open_mode::kReadOnly);
  EXPECT_EQ(files[0].handles[0].recordLockType, record_lock::kMultiple);
  EXPECT_EQ(files[0].handles[0].waitState, wait_state::kFile);
  EXPECT_EQ(files[0].handles[0].transactionState, transaction_state::kConcurrent);
  EXPECT_EQ(files[0].handles[0].clientName, "me@app");
  EXPECT_EQ(files[1].handles.size(), 1U);
}

TEST(OpenFilesReaderTest, MakesNamesDifferent) {
  Table rows({fileRow("1", "10", "a", "7"), fileRow("1", "11", "a", "7"),
              fileRow("2", "10", "a", "7"), fileRow("3", "10", "a", "7")});

  const std::vector<OpenFile> files = readOpenFiles(rows);

  ASSERT_EQ(files.size(), 4U);
  EXPECT_EQ(files[0].name, "a");
  EXPECT_EQ(files[1].name, "a#11");
  EXPECT_EQ(files[2].name, "a#10");
  EXPECT_EQ(files[3].name, "a#10");
}

TEST(OpenFilesReaderTest, SurvivesNullsAndLargeNumbers) {
  Table rows({
      {"1",           "10", std::nullopt, "99999999999999999999", "300", "-1", std::nullopt, "-5",
       "4294967296", "256", "-256", std::nullopt, "65536", std::nullopt},
      {       }
  });

  const std::vector<OpenFile> files = readOpenFiles(rows);

  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(files[0].name, "");
  EXPECT_EQ(files[0].pageSize, kLargest);
  EXPECT_EQ(files[0].readOnly, flag::kUnknown);
  EXPECT_EQ(files[0].recordLocks, flag::kUnknown);
  EXPECT_EQ(files[0].transactionLock, flag::kUnknown);
  EXPECT_EQ(files[0].sizeKb, 0U);
  EXPECT_EQ(files[0].handles[0].clientIndex, kLargest);
  EXPECT_EQ(files[0].handles[0].openMode, open_mode::kUnknown);
  EXPECT_EQ(files[0].handles[0].recordLockType, record_lock::kUnknown);
  EXPECT_EQ(files[0].handles[0].waitState, wait_state::kUnknown);
  EXPECT_EQ(files[0].handles[0].transactionState, transaction_state::kUnknown);
  EXPECT_EQ(files[1].name, "#");
}

TEST(ReadersTest, RefuseTextsThatAreNoNumbers) {
  for (const char* const text : {"", " 1", "1 ", "1.5", "x", "+1", "0x1", "--1"}) {
    std::vector<Cell> row = fileRow("1", "10", "a", "7");
    row[3] = text;
    Table rows({row});
    EXPECT_THROW(readOpenFiles(rows), Failure) << text;
  }
}

TEST(ClientsReaderTest, GroupsHandlesByProcess) {
  Table rows({
      {"7", "0", "192.0.2.7", "4", "1019", "me@app",  "a",          "254", "78", "0", "1019"},
      {"7", "0", "192.0.2.7", "4", "1019", "me@app",  "b",          "0",   "77", "1", "0"   },
      {"8", "1", "[local]",   "0", "0",    "you@app", std::nullopt, "0",   "0",  "0", "0"   }
  });

  const std::vector<Client> clients = readClients(rows);

  ASSERT_EQ(clients.size(), 2U);
  EXPECT_EQ(clients[0].id, "7");
  EXPECT_EQ(clients[0].site, site::kRemote);
  EXPECT_EQ(clients[0].networkAddress, "192.0.2.7");
  EXPECT_EQ(clients[0].locksUsed, 4U);
  EXPECT_EQ(clients[0].transactionState, transaction_state::kConcurrent);
  EXPECT_EQ(clients[0].processId, 7U);
  EXPECT_EQ(clients[0].connectionNumber, kUnknownConnectionNumber);
  EXPECT_EQ(clients[0].sessionName, "me@app");
  ASSERT_EQ(clients[0].handles.size(), 2U);
  EXPECT_EQ(clients[0].handles[1].fileName, "b");
  EXPECT_EQ(clients[0].handles[1].recordLockType, record_lock::kMultiple);
  EXPECT_EQ(clients[0].handles[1].waitState, wait_state::kRecord);
  EXPECT_EQ(clients[0].handles[1].transactionState, transaction_state::kNone);
  EXPECT_EQ(clients[1].site, site::kLocal);
  EXPECT_TRUE(clients[1].handles.empty());
}

TEST(ClientsReaderTest, SurvivesNulls) {
  Table rows({std::vector<Cell>(11), {}});

  const std::vector<Client> clients = readClients(rows);

  ASSERT_EQ(clients.size(), 1U);
  EXPECT_EQ(clients[0].id, "");
  EXPECT_EQ(clients[0].site, site::kUnknown);
  EXPECT_EQ(clients[0].transactionState, transaction_state::kUnknown);
}

TEST(SqlConnectionsReaderTest, ReadsEachField) {
  Table rows({
      {"host", "base", "app", "address", "user", "1", "4294967295", "86400"},
      std::vector<Cell>(8)
  });

  const std::vector<SqlConnection> connections = readSqlConnections(rows);

  ASSERT_EQ(connections.size(), 2U);
  EXPECT_EQ(connections[0].clientHost, "host");
  EXPECT_EQ(connections[0].dataSource, "base");
  EXPECT_EQ(connections[0].application, "app");
  EXPECT_EQ(connections[0].networkAddress, "address");
  EXPECT_EQ(connections[0].userName, "user");
  EXPECT_EQ(connections[0].status, connection_status::kActive);
  EXPECT_EQ(connections[0].periodMs, kLargest);
  EXPECT_EQ(connections[0].totalTime, 86400U);
  EXPECT_EQ(connections[1].clientHost, "");
}

TEST(UsageReaderTest, ReadsEachFigureAndKeepsPeaks) {
  UsageReader reader;
  Table high({
      {"11", "100", "12", "13", "14", "15", "16", "8", "17", "18", "19", "20"}
  });
  Table low({
      {"1", "100", "2", "3", "4", "5", "6", "8", "7", "8", "9", "21"}
  });

  reader.read(high);
  const Usage usage = reader.read(low);

  const auto figure = [](const Gauge& gauge) {
    return std::vector<std::int64_t>{gauge.current, gauge.peak, gauge.maximum};
  };
  using Figure = std::vector<std::int64_t>;
  EXPECT_EQ(figure(usage.users), (Figure{1, 11, 100}));
  EXPECT_EQ(figure(usage.files), (Figure{2, 12, 0}));
  EXPECT_EQ(figure(usage.handles), (Figure{3, 13, 0}));
  EXPECT_EQ(figure(usage.transactions), (Figure{4, 14, 0}));
  EXPECT_EQ(figure(usage.clients), (Figure{5, 15, 100}));
  EXPECT_EQ(figure(usage.workerThreads), (Figure{6, 16, 8}));
  EXPECT_EQ(figure(usage.locks), (Figure{7, 17, 0}));
  EXPECT_EQ(figure(usage.dataMb), (Figure{8, 18, 0}));
  EXPECT_EQ(figure(usage.sessions), (Figure{9, 19, 0}));
  EXPECT_EQ(usage.upTimeSeconds, 21U);
}

TEST(UsageReaderTest, NeedsARow) {
  Table rows({});

  EXPECT_THROW(UsageReader().read(rows), Failure);
}

TEST(CommunicationReaderTest, ReadsEachFigureAndKeepsPeaks) {
  CommunicationReader reader;
  Table high({
      {"1000", "3", "4", "5", "20", "30", "100", "10"}
  });
  Table low({
      {"4294967296", "6", "4", "5", "2", "3", "100", "10"}
  });

  reader.read(high);
  const Communication communication = reader.read(low);

  EXPECT_EQ(communication.requests, kLargest);
  EXPECT_EQ(communication.timeouts, 6U);
  EXPECT_EQ(communication.recoveries, 0U);
  EXPECT_EQ(communication.remoteSessions.current, 2U);
  EXPECT_EQ(communication.remoteSessions.peak, 20U);
  EXPECT_EQ(communication.remoteSessions.maximum, 100);
  EXPECT_EQ(communication.threads.current, 3U);
  EXPECT_EQ(communication.threads.peak, 30U);
  EXPECT_EQ(communication.threads.maximum, 110);
  ASSERT_EQ(communication.protocols.size(), 1U);
  EXPECT_EQ(communication.protocols[0].code, kTcpIpProtocol);
  EXPECT_EQ(communication.protocols[0].requests, 0U);
  EXPECT_EQ(communication.protocols[0].currentSessions, 2U);
  EXPECT_EQ(communication.protocols[0].peakSessions, 20U);
}

TEST(CommunicationReaderTest, SurvivesAnyNumber) {
  CommunicationReader reader;
  const Cell most = "9223372036854775807";
  Table rows({std::vector<Cell>(8, most)});

  const Communication communication = reader.read(rows);

  EXPECT_EQ(communication.threads.maximum, std::numeric_limits<std::int32_t>::max());
}

TEST(CommunicationReaderTest, NeedsARow) {
  Table rows({});

  EXPECT_THROW(CommunicationReader().read(rows), Failure);
}

}  // namespace
}  // namespace tal::postgresql
