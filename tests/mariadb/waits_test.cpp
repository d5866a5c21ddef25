// Who waits, for what, and who holds it: each wait staged on a server with all instruments and on
// one as servers are by default, and looked for in the list of files and in that of the sessions.
#include <optional>
#include <sstream>

#include "tests/mariadb/server_test.h"
#include "tests/support/wait_until.h"

namespace mariadb_testing {
namespace {

// Statements stand on lines of their own. Handles are "name (open mode, lock type, wait,
// transaction)"; what stands in `place` is a file of the database or a lock that is no table.
struct Wait {
  const char* what;
  const char* holder;
  const char* waiter;  // the last statement waits
  const char* place;
  const char* shown;
  const char* placeWithout;  // the same without the performance schema
  const char* shownWithout;
};

void PrintTo(const Wait& wait, std::ostream* stream) { *stream << wait.what; }

constexpr Wait kWaits[] = {
    {.what = "Row",
     .holder = "BEGIN\nUPDATE t SET v = 1 WHERE id = 1",
     .waiter = "UPDATE t SET v = 2 WHERE id = 1",
     .place = "t.ibd",
     .shown = "holder (0, S, 0, 1019)\nwaiter (0, S, 1, 1019)\n",
     .placeWithout = "t.ibd",
     .shownWithout = "holder (0, S, 0, 1019)\nwaiter (0, S, 1, 1019)\n"  },
    {.what = "SharedRow",
     .holder = "BEGIN\nSELECT * FROM t WHERE id = 1 LOCK IN SHARE MODE",
     .waiter = "DELETE FROM t WHERE id = 1",
     .place = "t.ibd",
     .shown = "holder (254, S, 0, 1019)\nwaiter (0, S, 1, 1019)\n",
     .placeWithout = "t.ibd",
     .shownWithout = "holder (254, S, 0, 1019)\nwaiter (0, S, 1, 1019)\n"},
    {.what = "Gap",
     .holder = "BEGIN\nSELECT * FROM t WHERE id BETWEEN 20 AND 30 FOR UPDATE",
     .waiter = "INSERT INTO t VALUES (25, 0)",
     .place = "t.ibd",
     .shown = "holder (0, S, 0, 1019)\nwaiter (0, S, 1, 1019)\n",
     .placeWithout = "t.ibd",
     .shownWithout = "holder (0, S, 0, 1019)\nwaiter (0, S, 1, 1019)\n"  },
    {.what = "UniqueKey",
     .holder = "BEGIN\nINSERT INTO t VALUES (100, 1)",
     .waiter = "INSERT INTO t VALUES (100, 2)",
     .place = "t.ibd",
     .shown = "holder (0, S, 0, 1019)\nwaiter (0, S, 1, 1019)\n",
     .placeWithout = "t.ibd",
     .shownWithout = "holder (0, S, 0, 1019)\nwaiter (254, S, 1, 1019)\n"},
    {.what = "ForeignKey",
     .holder = "BEGIN\nINSERT INTO child VALUES (1, 1)",
     .waiter = "DELETE FROM t WHERE id = 1",
     .place = "t.ibd",
     .shown = "holder (254, S, 0, 1019)\nwaiter (0, S, 1, 1019)\n",
     .placeWithout = "t.ibd",
     .shownWithout = "holder (254, S, 0, 1019)\nwaiter (0, S, 1, 1019)\n"},
    {.what = "Partition",
     .holder = "BEGIN\nUPDATE p SET v = 1 WHERE id = 1",
     .waiter = "UPDATE p SET v = 2 WHERE id = 1",
     .place = "p#P#p1.ibd",
     .shown = "holder (0, S, 0, 1019)\nwaiter (0, S, 1, 1019)\n",
     .placeWithout = "p#P#p1.ibd",
     .shownWithout = "holder (0, S, 0, 1019)\nwaiter (0, S, 1, 1019)\n"  },
    {.what = "AlterBehindAReader",
     .holder = "BEGIN\nSELECT * FROM t",
     .waiter = "ALTER TABLE t ADD COLUMN w INT, ALGORITHM=INPLACE",
     .place = "t.ibd",
     .shown = "holder (254, N, 0, 1019)\nwaiter (0, N, 2, 0)\n",
     .placeWithout = "metadata lock",
     .shownWithout = "waiter (0, N, 2, 0)\n"                             },
    {.what = "LockTables",
     .holder = "LOCK TABLES t WRITE",
     .waiter = "SELECT * FROM t",
     .place = "t.ibd",
     .shown = "holder (252, N, 0, 19)\nwaiter (254, N, 2, 0)\n",
     .placeWithout = "metadata lock",
     .shownWithout = "waiter (0, N, 2, 0)\n"                             },
    {.what = "TableInMemory",
     .holder = "LOCK TABLES memory WRITE",
     .waiter = "SELECT * FROM memory",
     .place = "app.memory",
     .shown = "holder (252, N, 0, 19)\nwaiter (254, N, 2, 0)\n",
     .placeWithout = "metadata lock",
     .shownWithout = "waiter (0, N, 2, 0)\n"                             },
    {.what = "DropOfADatabase",
     .holder = "BEGIN\nSELECT * FROM t",
     .waiter = "DROP DATABASE app",
     .place = "t.ibd",
     .shown = "holder (254, N, 0, 1019)\nwaiter (252, N, 2, 0)\n",
     .placeWithout = "metadata lock",
     .shownWithout = "waiter (0, N, 2, 0)\n"                             },
    {.what = "UserLock",
     .holder = "SELECT GET_LOCK('mine', 0)",
     .waiter = "SELECT GET_LOCK('mine', 1000)",
     .place = "user lock mine",
     .shown = "holder (252, N, 0, 19)\nwaiter (252, N, 2, 0)\n",
     .placeWithout = "user lock",
     .shownWithout = "waiter (0, N, 2, 0)\n"                             },
    {.what = "BackupStage",
     .holder = "BACKUP STAGE START\nBACKUP STAGE BLOCK_COMMIT",
     .waiter = "INSERT INTO t VALUES (100, 1)",
     .place = "backup lock",
     .shown = "holder (252, N, 0, 19)\nwaiter (0, N, 2, 1019)\n",
     .placeWithout = "backup lock",
     .shownWithout = "waiter (0, N, 2, 1019)\n"                          },
    {.what = "GlobalReadLock",
     .holder = "FLUSH TABLES WITH READ LOCK",
     .waiter = "INSERT INTO t VALUES (100, 1)",
     .place = "global read lock",
     .shown = "holder (252, N, 0, 19)\nwaiter (0, N, 2, 0)\n",
     .placeWithout = "backup lock",
     .shownWithout = "waiter (0, N, 2, 0)\n"                             },
};

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

template <typename Server>
class StagedWaits : public Server, public testing::WithParamInterface<Wait> {
 protected:
  void SetUp() override {
    Server::SetUp();
    this->admin_.executeAll({
        "CREATE TABLE app.t (id INT PRIMARY KEY, v INT) ENGINE=InnoDB",
        "INSERT INTO app.t SELECT seq, 0 FROM seq_1_to_10",
        "CREATE TABLE app.child (id INT PRIMARY KEY, parent INT, FOREIGN KEY (parent) "
        "REFERENCES t (id)) ENGINE=InnoDB",
        "CREATE TABLE app.p (id INT PRIMARY KEY, v INT) ENGINE=InnoDB"
        " PARTITION BY HASH (id) PARTITIONS 3",
        "INSERT INTO app.p SELECT seq, 0 FROM seq_1_to_10",
        "CREATE TABLE app.memory (id INT) ENGINE=MEMORY",
    });
  }

  void stage() {
    holder_.emplace(this->named("holder"));
    waiter_.emplace(this->named("waiter"));
    holder_->executeAll(linesOf(this->GetParam().holder));
    waiter_->start(this->GetParam().waiter);
  }

  std::optional<Session> holder_;
  std::optional<Session> waiter_;
};

using StagedWaitsTest = StagedWaits<InstrumentedServerTest>;
using StagedWaitsWithoutPerformanceSchemaTest = StagedWaits<PlainServerTest>;

TEST_P(StagedWaitsTest, WaiterAndHolderAreShown) {
  stage();

  expectHandles(GetParam().place, GetParam().shown);
}

TEST_P(StagedWaitsWithoutPerformanceSchemaTest, WhatIsKnownIsShown) {
  stage();

  expectHandles(GetParam().placeWithout, GetParam().shownWithout);
}

std::string nameOf(const testing::TestParamInfo<Wait>& info) { return info.param.what; }

INSTANTIATE_TEST_SUITE_P(All, StagedWaitsTest, testing::ValuesIn(kWaits), nameOf);
INSTANTIATE_TEST_SUITE_P(All, StagedWaitsWithoutPerformanceSchemaTest, testing::ValuesIn(kWaits),
                         nameOf);

template <typename Server>
class WaitsTest : public Server {
 protected:
  // The first has a row that the second wants, who has one that the third wants.
  void expectAChain() {
    this->admin_.executeAll({"CREATE TABLE app.t (id INT PRIMARY KEY, v INT) ENGINE=InnoDB",
                             "INSERT INTO app.t SELECT seq, 0 FROM seq_1_to_10"});
    Session first = this->named("first");
    Session second = this->named("second");
    Session third = this->named("third");
    first.executeAll({"BEGIN", "UPDATE t SET v = 1 WHERE id = 1"});
    second.executeAll({"BEGIN", "UPDATE t SET v = 1 WHERE id = 2"});
    second.start("UPDATE t SET v = 1 WHERE id = 1");
    this->waitForState(second, "Updating");
    third.start("UPDATE t SET v = 1 WHERE id = 2");

    this->expectHandles("t.ibd",
                        "first (0, S, 0, 1019)\n"
                        "second (0, M, 1, 1019)\n"
                        "third (0, S, 1, 1019)\n");
  }
};

using InstrumentedWaitsTest = WaitsTest<InstrumentedServerTest>;
using PlainWaitsTest = WaitsTest<PlainServerTest>;

TEST_F(InstrumentedWaitsTest, ChainOfThree) { expectAChain(); }
TEST_F(PlainWaitsTest, ChainOfThree) { expectAChain(); }

TEST_F(PlainWaitsTest, TransactionsThatHinderNobodyAreListed) {
  admin_.executeAll({"CREATE TABLE app.t (id INT PRIMARY KEY, v INT) ENGINE=InnoDB",
                     "INSERT INTO app.t SELECT seq, 0 FROM seq_1_to_10"});
  Session writer = named("writer");
  writer.executeAll({"BEGIN", "UPDATE t SET v = 1 WHERE id <= 3"});
  std::string number;
  ASSERT_TRUE(testing_support::waitUntil(
      [&] {
        number = admin_.value(
            "SELECT trx_id FROM information_schema.innodb_trx"
            " WHERE trx_mysql_thread_id = " +
            std::to_string(writer.id()));
        return !number.empty();
      },
      kPictureAge));

  expectHandles("transaction " + number, "writer (0, M, 0, 1019)\n");
}

}  // namespace
}  // namespace mariadb_testing
