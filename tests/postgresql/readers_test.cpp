// Readers of result rows on tables of a test's own, sane and hostile ones.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "tal/postgresql/lock_codes.h"
#include "tal/postgresql/read_figures.h"
#include "tal/postgresql/read_lists.h"
#include "tal/status.h"
#include "tests/sql/table.h"

namespace tal::postgresql {
namespace {

using testing_support::Cell;
using testing_support::Table;

constexpr std::uint32_t kLargest = std::numeric_limits<std::uint32_t>::max();

// A relation, used by one process.
std::vector<Cell> fileRow(const char* database, const char* relation, const char* name,
                          const char* process) {
  return {database, relation, name, "8192", "16385", "f",     "t",     "t",
          "2",      "2",      "f",  "t",    "t",     process, "me@app"};
}

TEST(FilesReaderTest, GroupsHandlesByRelation) {
  Table rows({fileRow("1", "10", "a", "7"), fileRow("1", "10", "a", "8"),
              fileRow("1", "11", "b", "7"), fileRow("1", "10", "a", "9")});

  const std::vector<OpenFile> files = readFiles(rows);

  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(files[0].name, "a");
  EXPECT_EQ(files[0].pageSize, 8192U);
  EXPECT_EQ(files[0].readOnly, flag::kNo);
  EXPECT_EQ(files[0].recordLocks, flag::kYes);
  EXPECT_EQ(files[0].transactionLock, flag::kNo);
  EXPECT_EQ(files[0].sizeKb, 17U);
  ASSERT_EQ(files[0].handles.size(), 3U);
  EXPECT_EQ(files[0].handles[2].clientIndex, 9U);
  EXPECT_EQ(files[0].handles[0].openMode, open_mode::kNormal);
  EXPECT_EQ(files[0].handles[0].recordLockType, record_lock::kMultiple);
  EXPECT_EQ(files[0].handles[0].waitState, wait_state::kFile);
  EXPECT_EQ(files[0].handles[0].transactionState, transaction_state::kConcurrent);
  EXPECT_EQ(files[0].handles[0].clientName, "me@app");
  EXPECT_EQ(files[1].handles.size(), 1U);
}

TEST(FilesReaderTest, AWriterThatKeepsOthersOutMarksTheFile) {
  std::vector<Cell> row = fileRow("1", "10", "a", "7");
  row[5] = "t";
  row[8] = row[9] = "5";
  Table rows({row});

  const std::vector<OpenFile> files = readFiles(rows);

  EXPECT_EQ(files[0].readOnly, flag::kYes);
  EXPECT_EQ(files[0].transactionLock, flag::kYes);
}

// Open mode, record lock type, wait state and transaction state of each use of a lock.
TEST(LockCodesTest, EachUse) {
  struct Row {
    LockUse use;
    std::vector<int> codes;
  };
  const Row rows[] = {
      {{true, true, 1, 1, false, false, false},   {254, 78, 0, 1019}},
      {{true, true, 2, 2, false, false, true},    {0, 77, 0, 1019}  },
      {{true, true, 3, 3, true, false, true},     {0, 77, 1, 1019}  },
      {{true, false, 3, 3, false, false, true},   {0, 78, 0, 1019}  },
      {{true, true, 4, 4, false, false, false},   {0, 78, 0, 1019}  },
      {{true, true, 0, 5, false, true, false},    {238, 78, 2, 0}   },
      {{true, true, 1, 6, false, true, false},    {252, 78, 2, 1019}},
      {{true, true, 6, 6, false, false, false},   {252, 78, 0, 19}  },
      {{true, true, 8, 8, true, true, false},     {252, 78, 1, 19}  },
      {{false, false, 7, 7, false, false, false}, {0, 78, 0, 19}    },
      {{false, false, 5, 5, false, false, false}, {0, 78, 0, 1019}  },
      {{false, false, 0, 5, true, false, false},  {0, 78, 1, 0}     },
      {{},                                        {0, 78, 0, 0}     },
  };

  for (const Row& row : rows) {
    const std::vector<int> codes = {openModeOf(row.use), recordLockTypeOf(row.use),
                                    waitStateOf(row.use), transactionStateOf(row.use)};
    EXPECT_EQ(codes, row.codes) << row.use.held << ' ' << row.use.asked;
  }
}

TEST(FilesReaderTest, MakesNamesDifferent) {
  Table rows({fileRow("1", "10", "a", "7"), fileRow("1", "11", "a", "7"),
              fileRow("2", "10", "a", "7"), fileRow("3", "10", "a", "7")});

  const std::vector<OpenFile> files = readFiles(rows);

  ASSERT_EQ(files.size(), 4U);
  EXPECT_EQ(files[0].name, "a");
  EXPECT_EQ(files[1].name, "a#11");
  EXPECT_EQ(files[2].name, "a#10");
  EXPECT_EQ(files[3].name, "a#10");
}

TEST(FilesReaderTest, SurvivesNullsAndLargeNumbers) {
  Table rows({
      {"1",           "10", std::nullopt, "99999999999999999999", "-5", "x", "1", std::nullopt, "-1", "99",
       std::nullopt, "true", "t", "4294967296", std::nullopt},
      {        }
  });

  const std::vector<OpenFile> files = readFiles(rows);

  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(files[0].name, "");
  EXPECT_EQ(files[0].pageSize, kLargest);
  EXPECT_EQ(files[0].readOnly, flag::kNo);
  EXPECT_EQ(files[0].sizeKb, 0U);
  EXPECT_EQ(files[0].handles[0].clientIndex, kLargest);
  EXPECT_EQ(files[0].handles[0].openMode, open_mode::kNormal);
  EXPECT_EQ(files[0].handles[0].waitState, wait_state::kNone);
  EXPECT_EQ(files[0].handles[0].transactionState, transaction_state::kNone);
  EXPECT_EQ(files[1].name, "#");
}

TEST(ReadersTest, RefuseTextsThatAreNoNumbers) {
  for (const char* const text : {"", " 1", "1 ", "1.5", "x", "+1", "0x1", "--1"}) {
    std::vector<Cell> row = fileRow("1", "10", "a", "7");
    row[3] = text;
    Table rows({row});
    EXPECT_THROW(readFiles(rows), Failure) << text;
  }
}

TEST(ClientsReaderTest, GroupsHandlesByProcess) {
  Table rows({
      {"7", "t", "192.0.2.7", "4", "f", "t", "me@app #7",  "a",          "t", "t", "1", "1", "f", "f", "f"},
      {"7", "t", "192.0.2.7", "4", "f", "t", "me@app #7",  "b",          "t", "t", "0", "3", "t", "f", "t"},
      {"8", "f", "[local]",   "0", "t", "t", "you@app #8", std::nullopt, "f", "f", "0", "0", "f", "f",
       "f"                                                                                                }
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
  EXPECT_EQ(clients[0].sessionName, "me@app #7");
  ASSERT_EQ(clients[0].handles.size(), 2U);
  EXPECT_EQ(clients[0].handles[1].fileName, "b");
  EXPECT_EQ(clients[0].handles[1].recordLockType, record_lock::kMultiple);
  EXPECT_EQ(clients[0].handles[1].waitState, wait_state::kRecord);
  EXPECT_EQ(clients[0].handles[1].transactionState, transaction_state::kNone);
  EXPECT_EQ(clients[1].site, site::kLocal);
  EXPECT_EQ(clients[1].transactionState, transaction_state::kExclusive);
  EXPECT_TRUE(clients[1].handles.empty());
}

TEST(ClientsReaderTest, SurvivesNulls) {
  Table rows({std::vector<Cell>(15), {}});

  const std::vector<Client> clients = readClients(rows);

  ASSERT_EQ(clients.size(), 1U);
  EXPECT_EQ(clients[0].id, "");
  EXPECT_EQ(clients[0].site, site::kLocal);
  EXPECT_EQ(clients[0].transactionState, transaction_state::kNone);
}

TEST(SqlConnectionsReaderTest, ReadsEachField) {
  Table rows({
      {"host", "base", "app", "address", "user", "t", "4294967295", "86400"},
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
      {"11", "100", "12", "13", "14", "15", "16", "8", "17", "18874368", "19", "20"}
  });
  Table low({
      {"1", "100", "2", "3", "4", "5", "6", "8", "7", "8912895", "9", "21"}
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
      {"1000", "3", "20", "30", "100", "10"}
  });
  Table low({
      {"4294967296", "6", "2", "3", "100", "10"}
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
