// What the lists show of what users do: transactions, locks of each kind, waits.
#include <string>

#include "tal/postgresql/statements.h"
#include "tests/postgresql/situation_test.h"

namespace testing_support {
namespace {

TEST_F(SituationTest, IdleSession) {
  Session first = session("first");

  first.run("SELECT * FROM t");

  EXPECT_EQ(observe(first), "; 0, 0 locks; idle");
}

TEST_F(SituationTest, SelectByKey) {
  Session first = session("first");

  first.run("BEGIN; SELECT * FROM t WHERE id = 1");

  EXPECT_EQ(observe(first),
            "t 254/78/0/1019, t_note 254/78/0/1019, t_pkey 254/78/0/1019; 1019, 4 locks; idle");
}

TEST_F(SituationTest, RowsLockedForUpdate) {
  Session first = session("first");

  first.run("BEGIN; SELECT * FROM t WHERE id = 1 FOR UPDATE");

  EXPECT_EQ(observe(first),
            "t 0/77/0/1019, t_note 0/78/0/1019, t_pkey 0/78/0/1019; 1019, 5 locks; idle");
}

TEST_F(SituationTest, RowsLockedForKeyShare) {
  Session first = session("first");

  first.run("BEGIN; SELECT * FROM t WHERE id = 1 FOR KEY SHARE");

  EXPECT_EQ(observe(first),
            "t 0/77/0/1019, t_note 0/78/0/1019, t_pkey 0/78/0/1019; 1019, 5 locks; idle");
}

TEST_F(SituationTest, TableLockedAway) {
  Session first = session("first");
  first.run("BEGIN; LOCK TABLE t IN ACCESS EXCLUSIVE MODE");
  Session second = session("second");

  second.start("SELECT * FROM t");
  waitUntilBlocked(second);

  EXPECT_EQ(observe(first), "t 252/78/0/19; 19, 3 locks; idle");
  EXPECT_EQ(observe(second), "t 254/78/2/0; 1019, 1 locks; active");
  EXPECT_EQ(file("app.public.t").transactionLock, tal::flag::kYes);
  EXPECT_EQ(file("app.public.t").sizeKb, 8U);
}

TEST_F(SituationTest, TableLockedForReaders) {
  Session first = session("first");
  first.run("BEGIN; LOCK TABLE t IN SHARE MODE");
  Session second = session("second");

  second.start("UPDATE t SET note = 'b' WHERE id = 1");
  waitUntilBlocked(second);

  EXPECT_EQ(observe(first), "t 238/78/0/1019; 1019, 2 locks; idle");
  EXPECT_EQ(observe(second), "t 0/78/2/0; 1019, 1 locks; active");
  EXPECT_EQ(file("app.public.t").transactionLock, tal::flag::kYes);
}

TEST_F(SituationTest, TableLockedForOneWriter) {
  Session first = session("first");

  first.run("BEGIN; LOCK TABLE t IN EXCLUSIVE MODE");

  EXPECT_EQ(observe(first), "t 252/78/0/19; 19, 2 locks; idle");
}

TEST_F(SituationTest, FailedTransaction) {
  Session first = session("first");

  first.runFailing("BEGIN; SELECT 1 / 0 FROM t");

  EXPECT_EQ(observe(first), "; 1019, 0 locks; idle");
}

// A wait, and where both lists must show it with its holder.
struct Wait {
  const char* name;
  const char* setUp;   // by the administrator
  const char* holder;  // leaves what it holds
  const char* waiter;
  const char* object;  // a query; {holder} is the holder's process
  int waitState;
};

constexpr const char* kTransaction =
    "SELECT 'transaction ' || transactionid FROM pg_locks"
    " WHERE pid = {holder} AND locktype = 'transactionid' AND granted";
constexpr const char* kVirtualTransaction =
    "SELECT 'virtual transaction ' || virtualxid FROM pg_locks"
    " WHERE pid = {holder} AND locktype = 'virtualxid' AND granted";
constexpr const char* kTable = "SELECT 'app.public.t'";

constexpr int kRecord = tal::wait_state::kRecord;
constexpr int kFile = tal::wait_state::kFile;

const Wait kWaits[] = {
    {"row changed",                                          "",                                              "BEGIN; UPDATE t SET note = 'a' WHERE id = 1",
     "UPDATE t SET note = 'b' WHERE id = 1",                                                                                                                                                          kTransaction,                             kRecord},
    {"row changed, by its table",                            "",                                              "BEGIN; UPDATE t SET note = 'a' WHERE id = 1",
     "UPDATE t SET note = 'b' WHERE id = 1",                                                                                                                                                          kTable,                                   kRecord},
    {"row shared",                                           "",                                              "BEGIN; SELECT * FROM t WHERE id = 1 FOR SHARE",
     "DELETE FROM t WHERE id = 1",                                                                                                                                                                    kTransaction,                             kRecord},
    {"unique key",                                           "",                                              "BEGIN; INSERT INTO t VALUES (1000)",            "INSERT INTO t VALUES (1000)",
     kTransaction,                                                                                                                                                                                                                              kRecord},
    {"foreign key",                                          "CREATE TABLE child (id int REFERENCES t (id))",
     "BEGIN; DELETE FROM t WHERE id = 2",                                                                                                                      "INSERT INTO child VALUES (2)",        kTransaction,                             kRecord},
    {"table of one name",                                    "",                                              "BEGIN; CREATE TABLE twin ()",                   "CREATE TABLE twin ()",                kTransaction,
     kRecord                                                                                                                                                                                                                                           },
    {"table locked",                                         "",                                              "BEGIN; LOCK TABLE t IN SHARE MODE",             "INSERT INTO t VALUES (1001)",         kTable,
     kFile                                                                                                                                                                                                                                             },
    {"truncation behind a reader",                           "",                                              "BEGIN; SELECT * FROM t",                        "TRUNCATE t",                          kTable,                                   kFile  },
    {"advisory lock",                                        "",                                              "SELECT pg_advisory_lock(7)",                    "SELECT pg_advisory_lock(7)",
     "SELECT 'advisory 7'",                                                                                                                                                                                                                     kRecord},
    {"advisory lock, least key",                             "",                                              "SELECT pg_advisory_lock(-9223372036854775808)",
     "SELECT pg_advisory_lock(-9223372036854775808)",                                                                                                                                                 "SELECT 'advisory -9223372036854775808'",
     kRecord                                                                                                                                                                                                                                           },
    {"advisory lock, two keys",                              "",                                              "SELECT pg_advisory_lock(-1, 2)",
     "SELECT pg_advisory_lock_shared(-1, 2)",                                                                                                                                                         "SELECT 'advisory -1, 2'",                kRecord},
    {"advisory lock, shared, to the end of the transaction", "",
     "BEGIN; SELECT pg_advisory_xact_lock_shared(8)",                                                                                                          "SELECT pg_advisory_xact_lock(8)",
     "SELECT 'advisory 8'",                                                                                                                                                                                                                     kRecord},
    {"index built behind an old transaction",                "",
     "BEGIN ISOLATION LEVEL REPEATABLE READ; SELECT * FROM t",                                                                                                 "CREATE INDEX CONCURRENTLY ON t (id)", kVirtualTransaction,                      kFile  },
    {"schema dropped",                                       "CREATE SCHEMA gone",                            "BEGIN; DROP SCHEMA gone",                       "CREATE TABLE gone.x ()",
     "SELECT 'pg_namespace gone'",                                                                                                                                                                                                              kFile  },
};

TEST_F(SituationTest, EachWaitIsShownWithItsHolder) {
  for (const Wait& wait : kWaits) {
    SCOPED_TRACE(wait.name);
    ServerTest::SetUp();
    admin_.run(wait.setUp);
    Session holder = session("holder");
    holder.run(wait.holder);
    Session waiter = session("waiter");
    waiter.start(wait.waiter);
    waitUntilBlocked(waiter);

    const std::string name = nameOf(wait.object, holder);
    const std::string waiting = handleOn(name, waiter);
    const std::string holding = handleOn(name, holder);
    end(waiter);
    end(holder);

    EXPECT_EQ(waitIn(waiting), wait.waitState) << name << ": " << waiting;
    EXPECT_EQ(waitIn(holding), tal::wait_state::kNone) << name << ": " << holding;
    EXPECT_FALSE(holding.ends_with("/0")) << holding;
  }
}

TEST_F(SituationTest, PreparedTransactionHoldsUpAWaiter) {
  Session first = session("first");
  first.run("BEGIN; UPDATE t SET note = 'a' WHERE id = 1; PREPARE TRANSACTION 'gid-2'");
  const std::string name =
      "transaction " + admin_.value("SELECT transaction FROM pg_prepared_xacts");
  Session waiter = session("waiter");

  waiter.start("DELETE FROM t WHERE id = 1");
  waitUntilBlocked(waiter);

  const tal::OpenFile observed = file(name);
  const std::string waiting = handleOn(name, waiter);
  admin_.run("ROLLBACK PREPARED 'gid-2'");
  ASSERT_EQ(observed.handles.size(), 2U);
  EXPECT_EQ(observed.handles[0].clientName, "prepared gid-2");
  EXPECT_EQ(describe(observed.handles[0]), "0/78/0/19");
  EXPECT_EQ(waiting, "0/78/1/0");
}

// The second waits for the transaction of the first, the third for the place behind the second.
TEST_F(SituationTest, ChainOfThree) {
  Session first = session("first");
  first.run("BEGIN; UPDATE t SET note = 'a' WHERE id = 1");
  const std::string name = nameOf(kTransaction, first);
  Session second = session("second");
  second.start("UPDATE t SET note = 'b' WHERE id = 1");
  waitUntilBlocked(second);
  Session third = session("third");

  third.start("UPDATE t SET note = 'c' WHERE id = 1");
  waitUntilBlocked(third);

  EXPECT_EQ(handleOn(name, first), "0/78/0/19");
  EXPECT_EQ(handleOn(name, second), "0/78/1/0");
  EXPECT_EQ(handleOn("app.public.t", second), "0/77/1/1019");
  EXPECT_EQ(handleOn("app.public.t", third), "0/77/1/1019");
}

TEST_F(SituationTest, CircleBeforeItIsBroken) {
  Session first = session("first");
  Session second = session("second");
  for (Session* const each : {&first, &second}) each->run("SET deadlock_timeout = '1h'; BEGIN");
  first.run("UPDATE t SET note = 'a' WHERE id = 1");
  second.run("UPDATE t SET note = 'a' WHERE id = 2");
  const std::string ofFirst = nameOf(kTransaction, first);
  const std::string ofSecond = nameOf(kTransaction, second);

  first.start("UPDATE t SET note = 'b' WHERE id = 2");
  waitUntilBlocked(first);
  second.start("UPDATE t SET note = 'b' WHERE id = 1");
  waitUntilBlocked(second);

  EXPECT_EQ(handleOn(ofFirst, first), "0/78/0/19");
  EXPECT_EQ(handleOn(ofFirst, second), "0/78/1/0");
  EXPECT_EQ(handleOn(ofSecond, second), "0/78/0/19");
  EXPECT_EQ(handleOn(ofSecond, first), "0/78/1/0");
}

TEST_F(SituationTest, PredicateLocksAreLocks) {
  Session first = session("first");

  first.run("BEGIN ISOLATION LEVEL SERIALIZABLE; SELECT * FROM t WHERE id = 1");

  const std::string granted = admin_.value(
      "SELECT count(*) FROM pg_locks WHERE granted AND pid = " + std::to_string(first.process()));
  EXPECT_NE(observe(first).find("; 1019, " + granted + " locks"), std::string::npos);
  EXPECT_EQ(std::to_string(engine_->usage().locks.current), granted);
}

TEST_F(SituationTest, AdvisoryLockOfAnotherDatabaseSaysSo) {
  Session first = session("first", "postgres");

  first.run("SELECT pg_advisory_lock(7)");

  EXPECT_EQ(handleOn("advisory 7 (postgres)", first), "0/78/0/19");
}

// Each client keeps an equal share of the locks when they are too many to be listed.
TEST_F(SituationTest, OneClientsLocksDoNotFillTheList) {
  Session hog = session("hog");
  Session other = session("other");
  hog.run("SELECT pg_advisory_lock(n) FROM generate_series(1, 1000) n");
  other.run("SELECT pg_advisory_lock(-5)");
  Session zelk(server_.connectionString("zelk", PrivateServer::kPassword, "app"), "check");
  std::string statement = tal::postgresql::clientsStatement().text;
  for (std::size_t at = 0; (at = statement.find("50000", at)) != std::string::npos;) {
    statement.replace(at, 5, "100");
  }

  const std::string shown = zelk.value(
      "SELECT string_agg(session_name, ', ') || ' ' || max(file_name) FILTER (WHERE file_name LIKE "
      "'%more%') FROM (SELECT session_name, file_name FROM (" +
      statement + ") x WHERE file_name IN ('advisory -5') OR file_name LIKE '%more%') y");

  EXPECT_EQ(shown, "postgres@app #" + std::to_string(hog.process()) + ", postgres@app #" +
                       std::to_string(other.process()) + " (950 more locks)");
}

}  // namespace
}  // namespace testing_support
