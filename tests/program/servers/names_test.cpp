// Names that hold what could break a line or drive a terminal.
#include "tests/mariadb/server_test.h"
#include "tests/postgresql/server_test.h"
#include "tests/program/servers/monitor.h"
#include "tests/support/text_comparison.h"
#include "tests/support/wait_until.h"

namespace servers_testing {
namespace {

using testing_support::sameText;

using PostgresqlNamesTest = testing_support::ServerTest;
using MariadbNamesTest = mariadb_testing::InstrumentedServerTest;

TEST_F(PostgresqlNamesTest, ControlCharactersAreReplacedAndOtherBytesKept) {
  admin_.run("DROP DATABASE IF EXISTS raw");
  admin_.run("CREATE DATABASE raw ENCODING 'SQL_ASCII' TEMPLATE template0");
  admin_.run("DROP ROLE IF EXISTS \"ro\"\"le\n\x1b[2Jx\"");
  admin_.run("CREATE ROLE \"ro\"\"le\n\x1b[2Jx\" SUPERUSER");
  testing_support::Session user = session("odd", "raw");
  user.run("CREATE TABLE \"ta\"\"b'l\\\te\r\n\xff\xc3\" (id int)");
  user.run("SET SESSION AUTHORIZATION \"ro\"\"le\n\x1b[2Jx\"");
  user.run("BEGIN; SELECT * FROM \"ta\"\"b'l\\\te\r\n\xff\xc3\"");

  const Report report =
      Monitor({"postgresql://127.0.0.1:" + std::to_string(server_.port()) + "/raw"}).textReport();

  EXPECT_PRED_FORMAT2(sameText,
                      "RAW.PUBLIC.TA?B'L??E??\xff\xc3 " + std::to_string(user.process()) +
                          " Read-only, None, None, Concurrent Lock\n",
                      handlesOfFiles(report));
  EXPECT_EQ(handlesOfFiles(report), handlesOfSessions(report, "PID"));
}

// Every name that a user of the server can choose, with every section on and off.
TEST_F(PostgresqlNamesTest, NoNameBreaksOrForgesAJsonReport) {
  const std::string forged = R"(x","site":"Local","\n)";
  const std::string quoted = R"("x"",""site"":""Local"",""\n")";
  admin_.run("DROP ROLE IF EXISTS " + quoted);
  admin_.run("CREATE ROLE " + quoted + " SUPERUSER");
  admin_.run("DROP DATABASE IF EXISTS " + quoted);
  admin_.run("CREATE DATABASE " + quoted);
  testing_support::Session prepared = session("prepared");
  prepared.run("CREATE TABLE " + quoted + " (id int)");
  prepared.run("BEGIN; LOCK TABLE " + quoted + "; PREPARE TRANSACTION '" + forged + "'");
  testing_support::Session user = session("user");
  user.run("SET application_name = '" + forged + "'; SET SESSION AUTHORIZATION " + quoted);
  user.start("SELECT * FROM " + quoted);
  waitUntilBlocked(user);
  testing_support::Session elsewhere = session("elsewhere", R"('x","site":"Local","\\n')");
  elsewhere.run("CREATE TABLE y (id int)");
  elsewhere.run("BEGIN; CREATE TABLE z (id int); INSERT INTO y VALUES (1)");
  elsewhere.run("SELECT pg_advisory_lock(7)");
  testing_support::Session mirror = session("mirror");
  mirror.run("CREATE MATERIALIZED VIEW m AS SELECT 1");
  mirror.run("BEGIN; SELECT * FROM m");

  expectWellFormedReports("postgresql://127.0.0.1:" + std::to_string(server_.port()) + "/app");

  prepared.run("ROLLBACK PREPARED '" + forged + "'");
}

TEST_F(MariadbNamesTest, ControlCharactersAreReplaced) {
  engine_.reset();
  admin_.execute("CREATE OR REPLACE USER 'us\"er\n\x1b[2Jx'@'127.0.0.1' IDENTIFIED BY 'secret'");
  admin_.execute("GRANT ALL ON app.* TO 'us\"er\n\x1b[2Jx'@'127.0.0.1'");
  admin_.execute("CREATE TABLE app.`ta\"b'l\\e\n\rx` (id INT PRIMARY KEY) ENGINE=InnoDB");
  mariadb_testing::Session user(server_, "us\"er\n\x1b[2Jx");
  user.executeAll({"USE app", "BEGIN", "SELECT * FROM `ta\"b'l\\e\n\rx`"});

  const bool pictured = testing_support::waitUntil(
      [this] { return admin_.value("SELECT COUNT(*) FROM information_schema.innodb_trx") == "1"; },
      mariadb_testing::kPictureAge);
  ASSERT_TRUE(pictured);

  const Report report = Monitor({"mariadb://" + mariadb_testing::locationOf(server_)}).textReport();

  const std::string file =
      capitals(server_.dataFolder() / "app/ta@0022b@0027l@005ce@000a@000dx.ibd");
  EXPECT_PRED_FORMAT2(
      sameText,
      file + " " + std::to_string(user.id()) + " Read-only, None, None, Concurrent Lock\n",
      handlesOfFiles(report));
  ASSERT_EQ(report.sessions.size(), 1U);
  EXPECT_EQ(report.sessions[0].values.at("Session Name"),
            "us?er??[2Jx@127.0.0.1 #" + std::to_string(user.id()));
  EXPECT_EQ(report.files[0].handles[0].values.at("Client Name"), "us?er??[2Jx@127.0.0.1");
}

}  // namespace
}  // namespace servers_testing
