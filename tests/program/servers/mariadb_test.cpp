// What zelk reports of a MariaDB server under a small load, compared with what the server itself
// says.
#include <gmock/gmock.h>

#include <optional>
#include <thread>

#include "tests/mariadb/server_test.h"
#include "tests/program/servers/monitor.h"
#include "tests/support/terminal.h"
#include "tests/support/text_comparison.h"
#include "tests/support/wait_until.h"

namespace servers_testing {
namespace {

using mariadb_testing::PrivateServer;
using mariadb_testing::Session;
using testing::HasSubstr;
using testing::Not;
using testing_support::sameText;

// Who holds or awaits which table, in the words of the report.
constexpr const char* kHandles =
    "SELECT CONCAT(UPPER(CONCAT(@@datadir, 'app/', object_name, '.ibd ')), processlist_id,"
    " CASE lock_type WHEN 'SHARED_READ' THEN ' Read-only'"
    "   WHEN 'SHARED_NO_READ_WRITE' THEN ' Exclusive' ELSE ' Normal' END,"
    " CASE WHEN COALESCE(trx_rows_locked, 0) = 0 THEN ', None'"
    "   WHEN trx_rows_locked = 1 THEN ', Single Lock' ELSE ', Multiple Locks' END,"
    " CASE WHEN lock_status = 'PENDING' THEN ', File'"
    "   WHEN trx_state = 'LOCK WAIT' THEN ', Record' ELSE ', None' END,"
    " CASE WHEN lock_status = 'PENDING' THEN ', None'"
    "   WHEN lock_type = 'SHARED_NO_READ_WRITE' THEN ', Exclusive Lock'"
    "   ELSE ', Concurrent Lock' END)"
    " FROM performance_schema.metadata_locks"
    " JOIN performance_schema.threads ON thread_id = owner_thread_id"
    " LEFT JOIN information_schema.innodb_trx ON trx_mysql_thread_id = processlist_id"
    " WHERE object_type = 'TABLE' AND object_schema = 'app'";

constexpr const char* kConnections =
    "SELECT CONCAT(user, ' ', SUBSTRING_INDEX(host, ':', 1), ' ', %s, ' ', COALESCE(db, ''),"
    " IF(command = 'Sleep' OR id = CONNECTION_ID(), ' Idle', ' Active'))"
    " FROM information_schema.processlist WHERE command <> 'Daemon'";

// Makes the same load on either server.
template <typename Server>
class LoadedTest : public Server {
 protected:
  void SetUp() override {
    Server::SetUp();
    this->engine_.reset();  // zelk itself is to be the only monitor
    this->admin_.executeAll({"CREATE TABLE orders (id INT PRIMARY KEY, v INT)",
                             "INSERT INTO orders SELECT seq, 0 FROM seq_1_to_1000",
                             "CREATE TABLE items (id INT PRIMARY KEY)"});
    for (const char* const name : {"alice", "bob", "carol", "dave", "erin", "frank"}) {
      const std::string account = name + std::string("@'127.0.0.1'");
      this->admin_.execute("CREATE OR REPLACE USER " + account + " IDENTIFIED BY 'secret'");
      this->admin_.execute("GRANT ALL ON app.* TO " + account);
      users_.emplace(name, Session(this->server_, name)).first->second.execute("USE app");
    }
    makeLoad();
  }

  // Alice has changed rows of which Bob wants to change one, Carol has locked a table that Dave
  // wants to read, Erin has read in a transaction, Frank does nothing.
  void makeLoad() {
    users_.at("alice").executeAll({"BEGIN", "UPDATE orders SET v = 1 WHERE id IN (1, 2, 3)"});
    users_.at("bob").execute("BEGIN");
    users_.at("bob").start("UPDATE orders SET v = 2 WHERE id = 1");
    this->waitForState(users_.at("bob"), "Updating");
    users_.at("carol").execute("LOCK TABLES items WRITE");
    users_.at("dave").start("SELECT * FROM items");
    this->waitForState(users_.at("dave"), "Waiting for table metadata lock");
    users_.at("erin").executeAll({"BEGIN", "SELECT COUNT(*) FROM orders"});
    const bool pictured = testing_support::waitUntil(
        [this] {
          return number("SELECT COUNT(*) FROM information_schema.innodb_trx") == 3 &&
                 number("SELECT COUNT(*) FROM information_schema.innodb_lock_waits") == 1;
        },
        mariadb_testing::kPictureAge);
    ASSERT_TRUE(pictured);
  }

  std::string location() const { return "mariadb://" + mariadb_testing::locationOf(this->server_); }

  long number(const std::string& query) { return std::stol(this->admin_.value(query)); }

  std::string variable(const std::string& name) { return this->admin_.value("SELECT @@" + name); }

  long status(const std::string& name) {
    return number(
        "SELECT variable_value FROM information_schema.global_status WHERE variable_name = '" +
        name + "'");
  }

  // No monitor is there, and the server's picture of transactions is old enough to be renewed.
  void waitUntilAlone() {
    EXPECT_TRUE(testing_support::waitUntil([this] {
      return number("SELECT COUNT(*) FROM information_schema.processlist WHERE user = 'zelk'") == 0;
    }));
    std::this_thread::sleep_for(mariadb_testing::kPictureAge);
  }

  // What both servers tell: that of the load and of their settings.
  void expectFigures(const Report& report) {
    const std::string users = std::to_string(status("THREADS_CONNECTED") + 1);  // zelk's own
    const std::string peak = std::to_string(status("MAX_USED_CONNECTIONS"));
    const std::string most = variable("max_connections");
    const std::string data = this->admin_.value(
        "SELECT CEIL(SUM(file_size) / 1048576)"
        " FROM information_schema.innodb_sys_tablespaces");

    EXPECT_EQ(report.version, versionText());
    EXPECT_EQ(report.usage.at("User Count"), users + " " + peak + " " + most);
    EXPECT_EQ(report.usage.at("Clients"), users + " " + peak + " " + most);
    EXPECT_EQ(report.usage.at("Session Count"), users + " " + peak + " n/a");
    EXPECT_EQ(report.usage.at("Transactions"), "3 3 unlimited");
    EXPECT_EQ(report.usage.at("Locks"), "4 4 unlimited");
    EXPECT_EQ(report.usage.at("Data in Use MB").substr(0, data.size()), data);
    EXPECT_TRUE(report.usage.at("Files").ends_with(" " + variable("open_files_limit")));
    EXPECT_TRUE(report.usage.at("Handles").ends_with(" " + variable("table_open_cache")));
    const std::string byTcp = std::to_string(std::stoi(users) - 1);  // all but the administrator
    EXPECT_EQ(report.communication.at("Total Remote Sessions"), byTcp + " " + byTcp + " " + most);
    EXPECT_EQ(report.communication.at("TCP/IP Remote Sessions"), byTcp + " " + byTcp);
    EXPECT_EQ(report.communication.at("Total Connection Timeouts"),
              std::to_string(status("ABORTED_CLIENTS")));
    EXPECT_EQ(report.communication.at("Total Connection Recoveries"), "0");
    EXPECT_EQ(report.connections.size(), std::stoul(users));
    EXPECT_EQ(report.connections.size(), report.announced.at("connections"));
    EXPECT_EQ(report.files.size(), report.announced.at("files"));
    EXPECT_EQ(report.sessions.size(), report.announced.at("sessions"));
  }

  // The report and what grows, which the server gives before and after it.
  Report boundedReport(const std::function<Report()>& make) {
    waitUntilAlone();
    const std::vector<std::string> growing = {"UPTIME", "QUESTIONS", "OPEN_TABLES"};
    std::map<std::string, long> before;
    for (const std::string& name : growing) before[name] = status(name);

    Report report = make();

    const std::map<std::string, long> shown = {
        {"UPTIME",      uptimeSeconds(report)                                         },
        {"QUESTIONS",   std::stol(report.communication.at("Total Requests Processed"))},
        {"OPEN_TABLES", std::stol(report.usage.at("Handles"))                         },
    };
    for (const std::string& name : growing) {
      EXPECT_LE(before.at(name), shown.at(name)) << name;
      EXPECT_LE(shown.at(name), status(name)) << name;
    }
    EXPECT_LE(status("QUESTIONS") - before.at("QUESTIONS"), kQuestionsOfARun);
    waitUntilAlone();
    return report;
  }

  std::string connectionsOfServer(const std::string& application) {
    std::string query = kConnections;
    query.replace(query.find("%s"), 2, "'" + application + "'");
    return sorted(this->admin_.column(query));
  }

  std::map<std::string, Session> users_;

 private:
  // All requests of zelk and of this test.
  static constexpr long kQuestionsOfARun = 60;

  std::string versionText() {
    return this->admin_.value(
        "SELECT CONCAT_WS('.', LPAD(SUBSTRING_INDEX(v, '.', 1), 2, '0'),"
        " LPAD(SUBSTRING_INDEX(SUBSTRING_INDEX(v, '.', 2), '.', -1), 2, '0'),"
        " LPAD(SUBSTRING_INDEX(v, '.', -1), 3, '0'))"
        " FROM (SELECT SUBSTRING_INDEX(VERSION(), '-', 1) AS v) x");
  }
};

using InstrumentedTest = LoadedTest<mariadb_testing::InstrumentedServerTest>;
using PlainTest = LoadedTest<mariadb_testing::PlainServerTest>;

TEST_F(InstrumentedTest, BothFormsSayWhatTheServerSays) {
  const Monitor monitor({location()});
  using Form = Report (Monitor::*)() const;
  for (const Form form : {&Monitor::textReport, &Monitor::jsonReport}) {
    SCOPED_TRACE(form == &Monitor::textReport ? "text" : "JSON");

    const Report report = boundedReport([&] { return (monitor.*form)(); });

    expectFigures(report);
    const std::string handles = sorted(admin_.column(kHandles));
    EXPECT_PRED_FORMAT2(sameText, handles, handlesOfFiles(report));
    EXPECT_PRED_FORMAT2(sameText, handles, handlesOfSessions(report, "Connection Number"));
    EXPECT_GT(std::stol(report.communication.at("TCP/IP Requests Processed")), 0);
    std::string connections = connectionsOfServer("libmariadb") + "zelk 127.0.0.1 zelk  Active\n";
    EXPECT_PRED_FORMAT2(sameText, sorted(linesOf(connections)), connectionLines(report));
  }
}

TEST_F(InstrumentedTest, TextAndJsonListTheSame) {
  const Monitor monitor({location()});
  waitUntilAlone();

  const Report text = monitor.textReport();
  waitUntilAlone();
  const Report json = monitor.jsonReport();

  EXPECT_PRED_FORMAT2(sameText, describe(text.files), describe(json.files));
  EXPECT_PRED_FORMAT2(sameText, describe(text.sessions), describe(json.sessions));
}

// Files in contention are known to be locked.
void expectInnoDbFilesAndLocksAtIssue(const Report& report) {
  std::map<std::string, std::string> flags;
  for (const Entry& file : report.files) {
    EXPECT_TRUE(file.name.ends_with(".IBD") || file.name.find("/DATA/IBDATA") != file.name.npos ||
                file.name.find("/DATA/UNDO") != file.name.npos ||
                file.name.find("/DATA/IBTMP") != file.name.npos || file.name[0] != '/')
        << file.name;
    flags[std::filesystem::path(file.name).filename()] =
        file.values.at("Record Locks") + ", " + file.values.at("Transaction Lock");
  }

  EXPECT_EQ(flags["ORDERS.IBD"], "Yes, Yes");
  EXPECT_EQ(flags["ITEMS.IBD"], "No, No");
  EXPECT_EQ(flags["METADATA LOCK"], "No, No");
}

TEST_F(PlainTest, WhatIsLostShowsAsNothing) {
  const Monitor withoutHandles(
      {
          location()
  },
      {{"HAND", "NO"}});

  const Report report = boundedReport([&] { return withoutHandles.textReport(); });

  expectFigures(report);
  EXPECT_EQ(report.communication.at("TCP/IP Requests Processed"), "0");
  EXPECT_PRED_FORMAT2(sameText,
                      sorted(linesOf(connectionsOfServer("") + "zelk 127.0.0.1   Active\n")),
                      connectionLines(report));
  for (const Entry& connection : report.connections) {
    EXPECT_EQ(connection.values.at("Total Connection Time"), "0");
  }
  EXPECT_EQ(report.sessions.size(), report.connections.size());
  for (const Entry& session : report.sessions) {
    for (const char* const lost : {"PID", "Records Read", "Records Inserted", "Records Deleted",
                                   "Records Updated", "Disk Accesses", "Cache Accesses"}) {
      EXPECT_EQ(session.values.at(lost), "0") << lost;
    }
  }
  expectInnoDbFilesAndLocksAtIssue(report);
}

// The file in contention, the metadata lock that Dave awaits, and Erin's transaction.
TEST_F(PlainTest, LocksAtIssueAreListedWithTheirSessions) {
  const Monitor monitor({location()});

  const Report text = boundedReport([&] { return monitor.textReport(); });
  const Report json = boundedReport([&] { return monitor.jsonReport(); });

  for (const Report& report : {text, json}) {
    expectFigures(report);
    EXPECT_EQ(report.files.size(), 3U);
    EXPECT_EQ(report.sessions.size(), 4U);
    EXPECT_EQ(linesOf(handlesOfFiles(report)).size(), 4U);
  }
}

std::string screenOf(const std::string& location) {
  const Monitor monitor({location});
  testing_support::Terminal terminal(monitor.command(kAsText));
  EXPECT_EQ(terminal.wait(), testing_support::Ending::exit(0));
  return terminal.screen();
}

TEST_F(PlainTest, UsersAtATerminalLearnWhyLittleIsListed) {
  EXPECT_THAT(screenOf(location()),
              HasSubstr("libtal: performance_schema is off on this server: "));
}

TEST_F(InstrumentedTest, UsersAtATerminalLearnThatMetadataLocksAreNotListed) {
  const std::string instrument = " WHERE name = 'wait/lock/metadata/sql/mdl'";
  admin_.execute("UPDATE performance_schema.setup_instruments SET enabled = 'NO'" + instrument);

  const std::string screen = screenOf(location());
  admin_.execute("UPDATE performance_schema.setup_instruments SET enabled = 'YES'" + instrument);

  EXPECT_THAT(screen, HasSubstr("libtal: this server does not list metadata locks: "));
}

TEST_F(InstrumentedTest, NothingIsSaidOfWhatIsNotMissing) {
  EXPECT_THAT(screenOf(location()), Not(HasSubstr("libtal:")));
}

// Everything that a user of the server can name, named to break a report or to forge a member of
// it.
template <typename Server>
class HostileTest : public Server {
 protected:
  void stage() {
    const std::string forged = R"(x","connection_status":"Idle","note":"forged\\ )";
    const std::string user = "'u\"ser\\\\\n'@'127.0.0.1'";
    this->engine_.reset();
    this->admin_.executeAll({"CREATE OR REPLACE USER " + user + " IDENTIFIED BY 'secret'",
                             "GRANT ALL ON *.* TO " + user, "CREATE OR REPLACE DATABASE `d\"b\\`",
                             "CREATE TABLE `d\"b\\`.`t\"a\\` (id INT PRIMARY KEY) ENGINE=InnoDB",
                             "CREATE TABLE `d\"b\\`.`m\"\\` (id INT) ENGINE=MEMORY",
                             "CREATE VIEW `d\"b\\`.`v\"\\` AS SELECT * FROM `d\"b\\`.`t\"a\\`",
                             "CREATE TABLE app.aria (id INT) ENGINE=Aria",
                             "CREATE TABLE app.mi (id INT) ENGINE=MyISAM"});
    hostile_.emplace(this->server_, "u\"ser\\\n", forged);
    hostile_->executeAll({"USE `d\"b\\`", "SELECT GET_LOCK('l\"o\\ck', 0)", "BEGIN",
                          "INSERT INTO `t\"a\\` VALUES (1)", "SELECT * FROM `v\"\\`",
                          "SELECT * FROM `m\"\\`", "SELECT * FROM seq_1_to_3"});
    waiter_.emplace(this->server_, "u\"ser\\\n", forged);
    waiter_->start("SELECT GET_LOCK('l\"o\\ck', 1000)");
    locker_.emplace(this->session());
    locker_->execute("LOCK TABLES mi READ, aria READ");
  }

  void TearDown() override {
    hostile_.reset();
    waiter_.reset();
    locker_.reset();
    Server::TearDown();
    this->admin_.executeAll(
        {"DROP DATABASE IF EXISTS `d\"b\\`", "DROP USER IF EXISTS 'u\"ser\\\\\n'@'127.0.0.1'"});
  }

  void expectWellFormed() {
    expectWellFormedReports("mariadb://" + mariadb_testing::locationOf(this->server_));
  }

 private:
  std::optional<Session> hostile_;
  std::optional<Session> waiter_;
  std::optional<Session> locker_;
};

using HostileInstrumentedTest = HostileTest<mariadb_testing::InstrumentedServerTest>;
using HostilePlainTest = HostileTest<mariadb_testing::PlainServerTest>;

TEST_F(HostileInstrumentedTest, JsonIsWellFormed) {
  stage();
  expectWellFormed();
}

TEST_F(HostilePlainTest, JsonIsWellFormed) {
  stage();
  expectWellFormed();
}

// An empty folder has no plugin for this way to log in.
TEST_F(HostilePlainTest, PluginsComeFromTheSystemsFolder) {
  this->engine_.reset();
  this->admin_.executeAll(
      {"INSTALL SONAME 'auth_ed25519'",
       "CREATE OR REPLACE USER ed@'127.0.0.1' IDENTIFIED VIA ed25519 USING PASSWORD('secret')",
       "GRANT ALL ON *.* TO ed@'127.0.0.1'"});
  const Monitor monitor({"mariadb://" + mariadb_testing::locationOf(server_), "ed"});
  testing_support::Command command = monitor.command(kAsText);
  command.environment["MARIADB_PLUGIN_DIR"] = "/nonexistent";
  command.environment["LIBMYSQL_PLUGINS"] = "dialog";

  const testing_support::Result result = testing_support::run(command);

  EXPECT_EQ(result.error, "");
  EXPECT_EQ(result.ending, testing_support::Ending::exit(0));
  this->admin_.executeAll({"DROP USER ed@'127.0.0.1'", "UNINSTALL SONAME 'auth_ed25519'"});
}

}  // namespace
}  // namespace servers_testing
