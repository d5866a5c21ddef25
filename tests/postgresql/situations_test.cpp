// What the lists show of what users do: transactions, locks of each kind, waits.
#include <string>

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

TEST_F(SituationTest, TwoWaitersForOneRow) {
  Session first = session("first");
  first.run("BEGIN; UPDATE t SET note = 'a' WHERE id = 1");
  Session second = session("second");
  second.start("UPDATE t SET note = 'b' WHERE id = 1");
  waitUntilBlocked(second);
  Session third = session("third");

  third.start("UPDATE t SET note = 'c' WHERE id = 1");
  waitUntilBlocked(third);

  const std::string expected = "t 0/77/1/1019, t_note 0/78/0/1019, t_pkey 0/78/0/1019; 1019, ";
  EXPECT_TRUE(observe(second).starts_with(expected)) << observe(second);
  EXPECT_TRUE(observe(second).ends_with("active")) << observe(second);
  EXPECT_TRUE(observe(third).starts_with(expected)) << observe(third);
  EXPECT_TRUE(observe(third).ends_with("active")) << observe(third);
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

TEST_F(SituationTest, AdvisoryLocks) {
  Session first = session("first");
  first.run("SELECT pg_advisory_lock(7)");
  Session second = session("second");

  second.start("SELECT pg_advisory_lock(7)");
  waitUntilBlocked(second);

  EXPECT_EQ(observe(first), "; 0, 1 locks; idle");
  EXPECT_EQ(observe(second), "; 1019, 1 locks; active");
}

TEST_F(SituationTest, FailedTransaction) {
  Session first = session("first");

  first.runFailing("BEGIN; SELECT 1 / 0 FROM t");

  EXPECT_EQ(observe(first), "; 1019, 0 locks; idle");
}

TEST_F(SituationTest, WaiterForUniqueKeyShowsNoWait) {
  Session first = session("first");
  first.run("BEGIN; INSERT INTO t VALUES (1000, 'a')");
  Session second = session("second");

  second.start("INSERT INTO t VALUES (1000, 'b')");
  waitUntilBlocked(second);

  EXPECT_EQ(handlesInFiles(static_cast<std::uint32_t>(first.process())), "t 0/77/0/1019");
  EXPECT_TRUE(observe(first).ends_with("idle")) << observe(first);
  EXPECT_TRUE(observe(second).starts_with("t 0/77/0/1019")) << observe(second);
  EXPECT_TRUE(observe(second).ends_with("active")) << observe(second);
}

}  // namespace
}  // namespace testing_support
