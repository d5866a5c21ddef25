// Rows of the other statements, sane and hostile, decoded without a server.
#include <gtest/gtest.h>

#include <ctime>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "tal/mariadb/data_files.h"
#include "tal/mariadb/read_lists.h"
#include "tal/mariadb/thread_parts.h"
#include "tests/sql/table.h"

namespace tal::mariadb {
namespace {

using testing_support::Cell;
using testing_support::Table;

constexpr std::uint32_t kLargest = std::numeric_limits<std::uint32_t>::max();
const ServerFacts kFacts{
    .innodbReadOnly = false, .networking = true, .ariaBlockSize = 8192, .myisamBlockSize = 1024};

TEST(DataFilesTest, BothPartsMeetByPath) {
  Table rows({
      {"open file",  "/d/db/t.ibd", "wait/io/file/innodb/innodb_data_file", {},  {},      {},      "db", "t"      },
      {"open file",  "/d/db/a.MAI", "wait/io/file/aria/MAI",                {},  {},      {},      "db", "a"      },
      {"open file",  "/d/db/m.MYI", "wait/io/file/myisam/kfile",            {},  {},      {},      "db", "m"      },
      {"open file",
       "/d/ddl_recovery.log",       "wait/io/file/sql/global_ddl_log",
       {},
       {},
       {},
       "d",                                                                                              "ddl"    },
      {"open file",
       "/d/ibdata1",                "wait/io/file/innodb/innodb_data_file",
       {},
       {},
       {},
       "d",                                                                                              "ibdata1"},
      {"tablespace", "/d/db/t.ibd", {},                                     "5", "16384", "65537", "db", "t"      },
      {"tablespace", "/x/u.ibd",    {},                                     "6", "4096",  "1024",  "db", "u"      },
      {"tablespace", "/d/ibdata1",  {},                                     "0", "16384", "2048",  "d",  "ibdata1"},
      {"tablespace", "/d/undo001",  {},                                     "9", "16384", "4096",  "d",  "undo001"}
  });

  const std::vector<DataFile> files = readDataFiles(rows, kFacts);

  std::string result;
  for (const DataFile& file : files) {
    result += file.path + " " + (file.table ? file.table->schema + "." + file.table->table : "-") +
              " " + std::to_string(file.isInnodb) + " " + std::to_string(file.space.value_or(-1)) +
              " " + std::to_string(file.pageSize) + " " + std::to_string(file.bytes) + "\n";
  }
  EXPECT_EQ(result,
            "/d/db/t.ibd db.t 1 5 16384 65537\n"
            "/d/db/a.MAI db.a 0 -1 8192 0\n"
            "/d/db/m.MYI db.m 0 -1 1024 0\n"
            "/d/ddl_recovery.log - 0 -1 0 0\n"
            "/d/ibdata1 - 1 0 16384 2048\n"
            "/x/u.ibd db.u 1 6 4096 1024\n"
            "/d/undo001 - 1 9 16384 4096\n");
}

// The first one by name, with all its files, in whatever order they come.
TEST(TableFilesTest, PartitionedTableStandsForItsFirstPartition) {
  std::vector<DataFile> files;
  for (const char* const path : {"p#P#p1.MYD", "p#P#p0.MYD", "p#P#p1.MYI", "p#P#p0.MYI", "t.ibd"}) {
    const bool isPartitioned = std::string_view(path).starts_with("p#");
    files.push_back({
        .path = path, .table = TableName{"db",                    isPartitioned ? "p" : "t"},
             .space = {                       }
    });
  }
  files.back().space = 7;

  const TableFiles tables(files);

  EXPECT_EQ(tables.of({"db", "p"}), (std::vector<std::size_t>{1, 3}));
  EXPECT_EQ(tables.of({"db", "t"}), std::vector<std::size_t>{4});
  EXPECT_TRUE(tables.of({"db", "view"}).empty());
  EXPECT_EQ(tables.ofSpace(7), 4U);
  EXPECT_EQ(tables.ofSpace(8), std::nullopt);
}

TEST(ClientsTest, PartsMeetByThreadAndConnection) {
  Table rows({
      {"transaction",        "7",     {},                      {},                 {}, {}, "12"        },
      {"word of the client", "7",     "_pid",                  {},                 {}, {}, "4242"      },
      {"file operations",    "20",    {},                      {},                 {}, {}, "3"         },
      {"file operations",    "20",    {},                      {},                 {}, {}, "4"         },
      {"file operations",    "21",    {},                      {},                 {}, {}, "1000"      },
      {"record counter",     "20",    "Handler_delete",        {},                 {}, {}, "1"         },
      {"record counter",     "20",    "Handler_update",        {},                 {}, {}, "2"         },
      {"record counter",     "20",    "Handler_write",         {},                 {}, {}, "9999999999"},
      {"record counter",     "20",    "Handler_read_key",      {},                 {}, {}, "5"         },
      {"record counter",     "20",    "Handler_read_rnd_next", {},                 {}, {}, "6"         },
      {"socket",             "20",    {},                      "192.0.2.7",        {}, {}, {}          },
      {"thread",             "20",    {},                      {},                 {}, {}, "7"         },
      {"connection",         "70000", "system user",           "",                 {}, {}, {}          },
      {"connection",         "7",     "app",                   "far.example:5000", {}, {}, {}          }
  });

  const std::vector<Client> clients = readClients(rows);

  ASSERT_EQ(clients.size(), 2U);
  EXPECT_EQ(clients[0].id, "7");
  EXPECT_EQ(clients[0].sessionName, "app@far.example #7");
  EXPECT_EQ(clients[0].networkAddress, "192.0.2.7");
  EXPECT_EQ(clients[0].site, site::kRemote);
  EXPECT_EQ(clients[0].recordsDeleted, 1U);
  EXPECT_EQ(clients[0].recordsUpdated, 2U);
  EXPECT_EQ(clients[0].recordsInserted, kLargest);
  EXPECT_EQ(clients[0].recordsRead, 11U);
  EXPECT_EQ(clients[0].diskAccesses, 7U);
  EXPECT_EQ(clients[0].locksUsed, 12U);
  EXPECT_EQ(clients[0].transactionState, transaction_state::kConcurrent);
  EXPECT_EQ(clients[0].processId, 4242U);
  EXPECT_EQ(clients[0].connectionNumber, 7U);
  EXPECT_EQ(clients[1].id, "70000");
  EXPECT_EQ(clients[1].transactionState, transaction_state::kNone);
  EXPECT_EQ(clients[1].diskAccesses, 0U);
}

TEST(ClientsTest, CountersDoNotOverflow) {
  const char* const largest = "18446744073709551615";
  Table rows({
      {"connection",      "7",  "app", "h:1", {}, {}, {}     },
      {"thread",          "20", {},    {},    {}, {}, "7"    },
      {"file operations", "20", {},    {},    {}, {}, largest},
      {"file operations", "20", {},    {},    {}, {}, largest}
  });

  EXPECT_EQ(readClients(rows)[0].diskAccesses, kLargest);
}

struct PeerRow {
  const char* hostAndPort;
  std::optional<std::string> ip;
  std::string address;
  std::int32_t site;
};

TEST(PeerTest, AddressesAndSites) {
  const PeerRow rows[] = {
      {"localhost",       "",          "Socket",      site::kLocal },
      {"localhost:40000", "127.0.0.1", "127.0.0.1",   site::kRemote},
      {"::1:38434",       "::1",       "::1",         site::kRemote},
      {"h:1",             "192.0.2.1", "192.0.2.1",   site::kRemote},
      {"localhost",       {},          "localhost",   site::kLocal },
      {"localhost:40000", {},          "localhost",   site::kRemote},
      {"::1:38434",       {},          "::1",         site::kRemote},
      {"far.example:1",   {},          "far.example", site::kRemote},
      {"",                {},          "",            site::kLocal },
      {"near:far",        {},          "near:far",    site::kLocal },
  };
  for (const PeerRow& row : rows) {
    const Peer peer{.hostAndPort = row.hostAndPort, .ip = row.ip};
    EXPECT_EQ(peer.address(), row.address) << row.hostAndPort;
    EXPECT_EQ(peer.site(), row.site) << row.hostAndPort;
  }
}

std::string text(const SqlConnection& row) {
  return row.clientHost + "|" + row.dataSource + "|" + row.application + "|" + row.networkAddress +
         "|" + row.userName + "|" + std::to_string(row.status) + "|" +
         std::to_string(row.periodMs) + "|" + std::to_string(row.totalTime);
}

std::clock_t timeToRead(long distance) {
  constexpr long kRows = 30000;
  std::vector<std::vector<Cell>> transactions;
  for (long i = 0; i < kRows; ++i) {
    transactions.push_back({"transaction", std::to_string(i * distance)});
  }
  Table rows(std::move(transactions));
  const std::clock_t begin = std::clock();
  readClients(rows);
  return std::clock() - begin;
}

// Of a hash table with so many entries, these numbers would all be in one place.
TEST(ClientsTest, NumbersThatAServerChoosesDoNotSlowTheReading) {
  constexpr long kPlaces = 42043;
  timeToRead(1);
  EXPECT_LT(timeToRead(kPlaces), 20 * timeToRead(1));
}

TEST(SqlConnectionsTest, PartsMeetByThreadAndConnection) {
  Table rows({
      {"connection",         "9",  "b",            "far:2",     {},     "Killed", "5000000000"},
      {"connection",         "8",  "a",            "near:1",    "db",   "Sleep",  "1500"      },
      {"connection",         "10", "c",            "localhost", {},     "Query",  "-1"        },
      {"thread",             "30", {},             {},          {},     {},       "8"         },
      {"socket",             "30", {},             "127.0.0.1", {},     {},       {}          },
      {"time",               "30", {},             {},          {},     {},       "2000000"   },
      {"time",               "30", {},             {},          {},     {},       "600000"    },
      {"time",               "31", {},             {},          {},     {},       "7000000"   },
      {"word of the client", "8",  "_client_name", {},          "libx", {},       {}          },
      {"word of the client", "8",  "program_name", {},          "prog", {},       {}          },
      {"word of the client", "9",  "_client_name", {},          "libx", {},       {}          }
  });

  const std::vector<SqlConnection> connections = readSqlConnections(rows);

  ASSERT_EQ(connections.size(), 3U);
  EXPECT_EQ(text(connections[0]), "near|db|prog|127.0.0.1|a|0|1500|4");
  EXPECT_EQ(text(connections[1]), "far||libx|far|b|2|4294967295|0");
  EXPECT_EQ(text(connections[2]), "localhost|||localhost|c|1|0|0");
}

TEST(SqlConnectionsTest, TimesThatAreNotMeasuredGiveNoTotal) {
  Table rows({
      {"connection", "8",  "a", "near:1", {}, "Sleep", "9000"},
      {"connection", "9",  "b", "near:2", {}, "Sleep", "9000"},
      {"thread",     "30", {},  {},       {}, {},      "8"   },
      {"thread",     "31", {},  {},       {}, {},      "9"   },
      {"time",       "30", {},  {},       {}, {},      {}    },
      {"time",       "31", {},  {},       {}, {},      "0"   }
  });

  const std::vector<SqlConnection> connections = readSqlConnections(rows);

  ASSERT_EQ(connections.size(), 2U);
  EXPECT_EQ(connections[0].totalTime, 0U);
  EXPECT_EQ(connections[1].totalTime, 9U);
}

}  // namespace
}  // namespace tal::mariadb
