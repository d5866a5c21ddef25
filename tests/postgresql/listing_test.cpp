// What is listed under which name, and what is not.
#include <string>

#include "tests/postgresql/situation_test.h"
#include "tests/support/wait_until.h"

namespace testing_support {
namespace {

class ListingTest : public SituationTest {};

TEST_F(ListingTest, TableOfAnOpenTransactionHasNoName) {
  Session first = session("first");
  first.run("BEGIN; CREATE TABLE unborn (id int); INSERT INTO unborn VALUES (1)");
  const std::string name =
      "app." + first.value("SELECT oid FROM pg_class WHERE relname = 'unborn'");

  const tal::OpenFile observed = file(name);

  EXPECT_EQ(describe(observed.handles.at(0)), "252/77/0/19");
  EXPECT_EQ(observed.sizeKb, 0U);
  EXPECT_EQ(observed.recordLocks, tal::flag::kYes);
  EXPECT_TRUE(observe(first).find("; 19, ") != std::string::npos) << observe(first);
}

TEST_F(ListingTest, NewTableWithoutRowsHasNoRowLocks) {
  Session first = session("first");
  first.run("BEGIN; CREATE TABLE unborn (id int)");

  const tal::OpenFile observed =
      file("app." + first.value("SELECT oid FROM pg_class WHERE relname = 'unborn'"));

  EXPECT_EQ(describe(observed.handles.at(0)), "252/78/0/19");
  EXPECT_EQ(observed.recordLocks, tal::flag::kNo);
}

TEST_F(ListingTest, PreparedTransaction) {
  Session first = session("first");
  first.run("BEGIN; UPDATE t SET note = 'a' WHERE id = 1; PREPARE TRANSACTION 'gid-1'");

  const tal::OpenFile observed = file("app.public.t");

  first.run("ROLLBACK PREPARED 'gid-1'");
  ASSERT_EQ(observed.handles.size(), 1U);
  EXPECT_EQ(describe(observed.handles.at(0)), "0/77/0/1019");
  EXPECT_EQ(observed.handles.at(0).clientIndex, 0U);
  EXPECT_EQ(observed.handles.at(0).clientName, "prepared gid-1");
}

TEST_F(ListingTest, ParallelWorkersAreFoldedIntoTheirLeader) {
  Session first = session("first");
  first.run(
      "SET parallel_setup_cost = 0; SET parallel_tuple_cost = 0; SET min_parallel_table_scan_size = 0;"
      "SET max_parallel_workers_per_gather = 2; ALTER TABLE t SET (parallel_workers = 2);"
      "INSERT INTO t SELECT n, repeat('x', 500) FROM generate_series(1000, 20000) n");

  first.start("SELECT count(pg_sleep(30)) FROM t");
  ASSERT_TRUE(waitUntil([this] {
    return admin_.value(
               "SELECT count(*) FROM pg_stat_activity"
               " WHERE backend_type = 'parallel worker'") == "2";
  }));
  ASSERT_TRUE(waitUntil([this] {
    return admin_.value("SELECT count(*) FROM pg_locks WHERE relation = 't'::regclass") == "3";
  }));

  EXPECT_EQ(observe(first),
            "t 254/78/0/1019, t_note 254/78/0/1019, t_pkey 254/78/0/1019; 1019, 8 locks; active");
  EXPECT_EQ(file("app.public.t").handles.size(), 1U);
  EXPECT_EQ(engine_->clients().size(), 2U);  // and the administrator
}

TEST_F(ListingTest, OtherDatabase) {
  Session first = session("first", "postgres");
  first.run("CREATE TABLE IF NOT EXISTS elsewhere (id int)");
  const std::string name =
      "postgres." + first.value("SELECT oid FROM pg_class WHERE relname = 'elsewhere'");

  first.run("BEGIN; INSERT INTO elsewhere VALUES (1)");

  EXPECT_EQ(observe(first), name + " 0/77/0/1019; 1019, 3 locks; idle");
  EXPECT_EQ(file(name).sizeKb, 0U);
  EXPECT_EQ(file(name).recordLocks, tal::flag::kYes);
}

TEST_F(ListingTest, SharedCatalog) {
  Session first = session("first");

  first.run("BEGIN; LOCK TABLE pg_database IN ACCESS SHARE MODE");

  EXPECT_EQ(observe(first), "global.pg_catalog.pg_database 254/78/0/1019; 1019, 2 locks; idle");
}

TEST_F(ListingTest, AutovacuumWorker) {
  {
    // The server learns at the session's end, if not before, how many rows are dead.
    Session first = session("first");
    first.run(
        "ALTER TABLE t SET (autovacuum_vacuum_threshold = 0, autovacuum_vacuum_scale_factor = 0,"
        " autovacuum_vacuum_cost_delay = 100, autovacuum_vacuum_cost_limit = 1);"
        "INSERT INTO t SELECT n, repeat('x', 500) FROM generate_series(1000, 20000) n;"
        "DELETE FROM t WHERE id > 500");
  }
  admin_.run("ALTER SYSTEM SET autovacuum = on");
  admin_.run("SELECT pg_reload_conf()");
  std::string observed;
  std::uint32_t process = 0;

  ASSERT_TRUE(waitUntil([&] {
    for (const tal::OpenFile& file : engine_->openFiles()) {
      if (file.name != "app.public.t" || file.handles.empty()) continue;
      observed = file.handles.front().clientName + ' ' + describe(file.handles.front());
      process = file.handles.front().clientIndex;
    }
    return !observed.empty();
  }));

  EXPECT_EQ(observed, "autovacuum worker 0/78/0/1019");
  int sites = 0;
  for (const tal::Client& client : engine_->clients()) {
    if (client.processId == process && client.site == tal::site::kLocal) ++sites;
  }
  EXPECT_EQ(sites, 1);
  EXPECT_EQ(engine_->sqlConnections().size(), 2U);  // the administrator's and the monitor's own
  admin_.run("ALTER SYSTEM RESET ALL");
  admin_.run("SELECT pg_reload_conf()");
}

TEST_F(ListingTest, SessionThatHidesItsActivity) {
  Session first = session("first");

  first.run("SET track_activities = off");
  first.run("BEGIN; SELECT * FROM t WHERE id = 1");

  EXPECT_EQ(observe(first),
            "t 254/78/0/1019, t_note 254/78/0/1019, t_pkey 254/78/0/1019; 1019, 4 locks; idle");
}

TEST_F(ListingTest, ViewsAndPartitionedTablesAreNoFiles) {
  Session first = session("first");
  first.run(
      "CREATE VIEW v AS SELECT note FROM t;"
      "CREATE TABLE parent (id int) PARTITION BY LIST (id);"
      "CREATE TABLE child PARTITION OF parent FOR VALUES IN (1)");

  first.run("BEGIN; SELECT * FROM v; SELECT * FROM parent");

  EXPECT_EQ(handlesInFiles(static_cast<std::uint32_t>(first.process())),
            "child 254/78/0/1019, t 254/78/0/1019, t_note 254/78/0/1019, t_pkey 254/78/0/1019");
}

TEST_F(ListingTest, NamesAreRawButForQuotesAndBackslashes) {
  Session first = session("first");
  const std::string names[] = {"CamelCase", "we?ird ?name", "na\xc3\xafve"};
  first.run(
      "CREATE TABLE \"CamelCase\" (id int); CREATE TABLE \"we\"\"ird \\name\" (id int);"
      "CREATE TABLE \"na\xc3\xafve\" (id int)");

  first.run(
      "BEGIN; SELECT * FROM \"CamelCase\"; SELECT * FROM \"we\"\"ird \\name\";"
      "SELECT * FROM \"na\xc3\xafve\"");

  for (const std::string& name : names) {
    EXPECT_EQ(file("app.public." + name).name, "app.public." + name);
  }
}

TEST_F(ListingTest, RelationsWithOneNameAreTold) {
  Session first = session("first");
  first.run(
      "CREATE SCHEMA a; CREATE SCHEMA \"a.b\"; CREATE TABLE a.\"b.c\" (id int);"
      "CREATE TABLE \"a.b\".c (id int)");

  first.run("BEGIN; LOCK TABLE a.\"b.c\", \"a.b\".c IN ACCESS SHARE MODE");

  const std::string later = first.value("SELECT '\"a.b\".c'::regclass::oid");
  EXPECT_EQ(file("app.a.b.c").handles.size(), 1U);
  EXPECT_EQ(file("app.a.b.c#" + later).handles.size(), 1U);
  first.run("COMMIT; DROP SCHEMA a CASCADE; DROP SCHEMA \"a.b\" CASCADE");
}

}  // namespace
}  // namespace testing_support
