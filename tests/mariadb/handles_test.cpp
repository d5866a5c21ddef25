// Who holds or awaits what: each situation made on a real server.
#include "tests/mariadb/server_test.h"

namespace mariadb_testing {
namespace {

class HandlesTest : public InstrumentedServerTest {
 protected:
  void SetUp() override {
    InstrumentedServerTest::SetUp();
    admin_.executeAll({
        "CREATE TABLE app.t (id INT PRIMARY KEY, v INT) ENGINE=InnoDB",
        "INSERT INTO app.t SELECT seq, 0 FROM seq_1_to_10",
        "CREATE TABLE app.u (id INT PRIMARY KEY, v INT) ENGINE=InnoDB",
        "INSERT INTO app.u SELECT seq, 0 FROM seq_1_to_10",
    });
  }
};

TEST_F(HandlesTest, RowLocksAndTheirWaiters) {
  Session many = named("many");
  Session one = named("one");
  Session shared = named("shared");
  Session snapshot = named("snapshot");
  Session first = named("first");
  Session second = named("second");
  many.executeAll({"BEGIN", "UPDATE t SET v = 1 WHERE id IN (1, 2, 3)"});
  one.executeAll({"BEGIN", "UPDATE t SET v = 1 WHERE id = 5"});
  shared.executeAll({"BEGIN", "SELECT * FROM t WHERE id = 7 LOCK IN SHARE MODE"});
  snapshot.executeAll({"BEGIN", "SELECT * FROM t"});
  first.execute("BEGIN");
  first.start("UPDATE t SET v = 2 WHERE id = 1");
  second.execute("BEGIN");
  second.start("DELETE FROM t WHERE id = 5");

  expectHandles("t.ibd",
                "many (0, M, 0, 1019)\n"
                "one (0, S, 0, 1019)\n"
                "shared (254, S, 0, 1019)\n"
                "snapshot (254, N, 0, 1019)\n"
                "first (0, S, 1, 1019)\n"
                "second (0, S, 1, 1019)\n");
}

TEST_F(HandlesTest, FreshRowsAreLockedWithoutBeingCounted) {
  Session writer = named("writer");
  Session bulk = named("bulk");
  writer.executeAll({"BEGIN", "INSERT INTO t VALUES (100, 1)"});
  bulk.executeAll({"BEGIN", "INSERT INTO u SELECT seq, 0 FROM seq_100_to_105"});

  expectHandles("t.ibd", "writer (0, S, 0, 1019)\n");
  expectHandles("u.ibd", "bulk (0, M, 0, 1019)\n");
}

TEST_F(HandlesTest, MixedTransactionLocksWhatItWrites) {
  Session mixed = named("mixed");
  mixed.executeAll({"BEGIN", "SELECT * FROM u", "UPDATE t SET v = 1 WHERE id = 1"});

  expectHandles("t.ibd", "mixed (0, S, 0, 1019)\n");
  expectHandles("u.ibd", "mixed (254, N, 0, 1019)\n");
}

TEST_F(HandlesTest, TransactionThatLocksAllItsTables) {
  Session both = named("both");
  both.executeAll({"BEGIN", "SELECT * FROM u WHERE id = 1 LOCK IN SHARE MODE",
                   "UPDATE t SET v = 1 WHERE id = 1"});

  expectHandles("t.ibd", "both (0, M, 0, 1019)\n");
  expectHandles("u.ibd", "both (254, M, 0, 1019)\n");
}

TEST_F(HandlesTest, LockedTables) {
  admin_.execute("CREATE TABLE app.m (id INT PRIMARY KEY) ENGINE=MyISAM");
  Session locker = named("locker");
  Session waiter = named("waiter");
  locker.execute("LOCK TABLES t WRITE, m WRITE, u READ");
  waiter.start("INSERT INTO m VALUES (1)");
  waitForState(waiter, "Waiting for table metadata lock");

  expectHandles("t.ibd", "locker (252, N, 0, 19)\n");
  expectHandles("u.ibd", "locker (254, N, 0, 0)\n");
  expectHandles("m.MYI", "locker (244, N, 0, 19)\nwaiter (248, N, 2, 0)\n");
  expectHandles("m.MYD", "locker (244, N, 0, 19)\nwaiter (248, N, 2, 0)\n");
}

TEST_F(HandlesTest, WaiterForALockOfTheEngineOnAWholeTable) {
  admin_.executeAll(
      {"CREATE TABLE app.m (id INT) ENGINE=MyISAM", "INSERT INTO app.m VALUES (1), (2)"});
  Session reader = named("reader");
  Session writer = named("writer");
  reader.start("SELECT SLEEP(1000) FROM m");
  waitForState(reader, "User sleep");
  writer.start("UPDATE m SET id = 2");
  waitForState(writer, "Waiting for table level lock");

  expectHandles("m.MYD", "reader (246, N, 0, 0)\nwriter (248, N, 2, 0)\n");
}

TEST_F(HandlesTest, WaitingSchemaChangeAndWhoQueuesBehindIt) {
  Session reader = named("reader");
  Session changer = named("changer");
  Session late = named("late");
  reader.executeAll({"BEGIN", "SELECT * FROM t"});
  changer.start("ALTER TABLE t ADD COLUMN w INT, ALGORITHM=INPLACE");
  waitForState(changer, "Waiting for table metadata lock");
  late.start("SELECT * FROM t");
  waitForState(late, "Waiting for table metadata lock");

  expectHandles("t.ibd",
                "reader (254, N, 0, 1019)\n"
                "changer (0, N, 2, 0)\n"
                "late (254, N, 2, 0)\n");
}

TEST_F(HandlesTest, PartitionedTableStandsForItsFirstPartition) {
  admin_.execute(
      "CREATE TABLE app.p (id INT PRIMARY KEY, v INT) ENGINE=InnoDB"
      " PARTITION BY HASH (id) PARTITIONS 3");
  Session writer = named("writer");
  writer.executeAll({"BEGIN", "INSERT INTO p VALUES (1, 0)"});

  expectHandles("p#P#p0.ibd", "writer (0, S, 0, 1019)\n");
  expectHandles("p#P#p1.ibd", "");
  expectHandles("p#P#p2.ibd", "");
}

struct NamedTable {
  const char* name;  // as it stands between backquotes
  const char* file;
};

class TableNamesTest : public HandlesTest, public testing::WithParamInterface<NamedTable> {};

TEST_P(TableNamesTest, FileIsFound) {
  const std::string table = "`" + std::string(GetParam().name) + "`";
  admin_.execute("CREATE TABLE app." + table + " (id INT PRIMARY KEY) ENGINE=InnoDB");
  Session reader = named("reader");
  reader.executeAll({"BEGIN", "SELECT * FROM " + table});

  expectHandles(GetParam().file, "reader (254, N, 0, 1019)\n");
}

INSTANTIATE_TEST_SUITE_P(All, TableNamesTest,
                         testing::Values(NamedTable{"we ird", "we@0020ird.ibd"},
                                         NamedTable{"quo'te\"d", "quo@0027te@0022d.ibd"},
                                         NamedTable{"back``quote", "back@0060quote.ibd"},
                                         NamedTable{"a#b", "a@0023b.ibd"},
                                         NamedTable{"do.t/s", "do@002et@002fs.ibd"},
                                         NamedTable{"Größe", "Gr@1i@1je.ibd"},
                                         NamedTable{"表", "@8868.ibd"}));

TEST_F(HandlesTest, TablesWithoutAFileAreSeenByTheirNames) {
  admin_.executeAll({"CREATE TABLE app.memory (id INT) ENGINE=MEMORY",
                     "CREATE VIEW app.view AS SELECT * FROM app.t"});
  Session locker = named("locker");
  Session viewer = named("viewer");
  locker.execute("LOCK TABLES memory WRITE");
  viewer.executeAll({"BEGIN", "SELECT * FROM view"});

  expectHandles("app.memory", "locker (252, N, 0, 19)\n");
  expectHandles("app.view", "viewer (254, N, 0, 1019)\n");
}

TEST_F(HandlesTest, TemporaryAndCachedTablesAreNobodys) {
  Session user = named("user");
  user.executeAll({"CREATE TEMPORARY TABLE own (id INT)", "INSERT INTO own VALUES (1)",
                   "PREPARE s FROM 'SELECT * FROM t'", "EXECUTE s"});

  expectHandles("t.ibd", "");
  for (const tal::Client& client : engine_->clients()) EXPECT_TRUE(client.handles.empty());
}

TEST_F(HandlesTest, FlagsOfAFileComeFromItsHandles) {
  Session writer = named("writer");
  Session reader = named("reader");
  writer.executeAll({"BEGIN", "UPDATE t SET v = 1 WHERE id = 1"});
  reader.executeAll({"BEGIN", "SELECT * FROM u"});
  const auto flags = [&] {
    std::string result;
    for (const tal::OpenFile& file : engine_->openFiles()) {
      const std::string name = std::filesystem::path(file.name).filename();
      if (name != "t.ibd" && name != "u.ibd" && name != "aria_log_control") continue;
      result += name + " " + std::to_string(file.recordLocks) + " " +
                std::to_string(file.transactionLock) + " " + std::to_string(file.readOnly) + "\n";
    }
    return result;
  };

  expectInTheEnd(flags,
                 "aria_log_control 78 78 78\n"
                 "t.ibd 89 89 78\n"
                 "u.ibd 78 89 78\n");
}

TEST_F(HandlesTest, NothingWaitsBehindAGlobalReadLock) {
  Session locker = named("locker");
  Session writer = named("writer");
  locker.execute("FLUSH TABLES WITH READ LOCK");
  writer.start("UPDATE t SET v = 1");
  waitForState(writer, "Waiting for backup lock");

  EXPECT_GT(engine_->usage().sessions.current, 2U);
  EXPECT_GT(engine_->communication().requests, 0U);
  EXPECT_EQ(engine_->sqlConnections().size(), 4U);
}

}  // namespace
}  // namespace mariadb_testing
