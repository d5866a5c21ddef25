// What zelk reports of a PostgreSQL server under a small load, compared with what the server itself
// says.
#include <vector>

#include "tests/postgresql/server_test.h"
#include "tests/program/servers/monitor.h"
#include "tests/support/text_comparison.h"
#include "tests/support/wait_until.h"

namespace servers_testing {
namespace {

using testing_support::sameText;
using testing_support::Session;

constexpr const char* kOwnFacts[][2] = {
    {"version",
     "SELECT to_char(n / 10000, 'FM00') || '.' || to_char(n % 10000, 'FM00') || '.000'"
     " FROM (SELECT current_setting('server_version_num')::int AS n) v"                           },
    {"users",        "SELECT count(*) FROM pg_stat_activity WHERE backend_type = 'client backend'"},
    {"max_users",    "SHOW max_connections"                                                       },
    {"backends",
     "SELECT current_setting('max_connections')::int + current_setting('max_wal_senders')::int"   },
    {"workers",
     "SELECT count(*) FROM pg_stat_activity WHERE backend_type LIKE 'logical replication%'"       },
    {"max_workers",  "SHOW max_worker_processes"                                                  },
    {"data",         "SELECT round(sum(pg_database_size(oid)) / 1048576) FROM pg_database"        },
    {"transactions",
     "SELECT count(*) FROM pg_stat_activity WHERE xact_start IS NOT NULL"
     " AND backend_type = 'client backend' AND pid <> pg_backend_pid()"                           },
    {"files",
     "SELECT count(DISTINCT (database, relation, awaited)) FROM pg_locks"
     " LEFT JOIN (SELECT transactionid::text AS awaited FROM pg_locks WHERE NOT granted) w"
     " ON awaited = transactionid::text"
     " WHERE (locktype = 'relation' OR awaited IS NOT NULL) AND pid <> pg_backend_pid()"          },
    {"handles",
     "SELECT count(DISTINCT (database, relation, awaited, pid)) FROM pg_locks"
     " LEFT JOIN (SELECT transactionid::text AS awaited FROM pg_locks WHERE NOT granted) w"
     " ON awaited = transactionid::text"
     " WHERE (locktype = 'relation' OR awaited IS NOT NULL) AND pid <> pg_backend_pid()"          },
    {"locks",        "SELECT count(*) FROM pg_locks WHERE granted AND pid <> pg_backend_pid()"    },
    {"lockers",
     "SELECT count(DISTINCT pid) FROM pg_locks"
     " WHERE locktype = 'relation' AND pid <> pg_backend_pid()"                                   },
};

// Each relation in use and who uses it, in the words of the report.
constexpr const char* kHandles =
    "SELECT upper(current_database() || '.' || n.nspname || '.' || c.relname) || ' ' || pid"
    " || CASE l.mode WHEN 'AccessShareLock' THEN ' Read-only'"
    "    WHEN 'AccessExclusiveLock' THEN ' Exclusive' ELSE ' Normal' END"
    " || CASE WHEN l.mode = 'RowExclusiveLock' AND c.relkind = 'r' THEN ', Multiple Locks'"
    "    ELSE ', None' END"
    " || CASE WHEN NOT l.granted THEN ', File'"
    "    WHEN a.wait_event = 'transactionid' AND c.relkind = 'r' THEN ', Record'"
    "    ELSE ', None' END"
    " || CASE WHEN NOT l.granted THEN ', None'"
    "    WHEN l.mode = 'AccessExclusiveLock' THEN ', Exclusive Lock'"
    "    ELSE ', Concurrent Lock' END || chr(10)"
    " FROM pg_locks l JOIN pg_class c ON c.oid = l.relation"
    " JOIN pg_namespace n ON n.oid = c.relnamespace JOIN pg_stat_activity a USING (pid)"
    " WHERE l.locktype = 'relation' AND pid <> pg_backend_pid()"
    " UNION ALL"
    " SELECT 'TRANSACTION ' || transactionid || ' ' || pid || ' Normal, None'"
    " || CASE WHEN granted THEN ', None, Exclusive Lock' ELSE ', Record, None' END || chr(10)"
    " FROM pg_locks WHERE transactionid IN (SELECT transactionid FROM pg_locks WHERE NOT granted)";

constexpr const char* kConnections =
    "SELECT usename || ' ' || host(client_addr) || ' ' || application_name || ' ' || datname"
    " || CASE WHEN pid = pg_backend_pid() THEN ' Idle' WHEN state = 'active' THEN ' Active'"
    "    ELSE ' Idle' END || chr(10)"
    " FROM pg_stat_activity WHERE backend_type = 'client backend'";

constexpr const char* kTransactionsEver =
    "SELECT sum(xact_commit + xact_rollback) FROM pg_stat_database";
constexpr const char* kUptime =
    "SELECT floor(extract(epoch FROM clock_timestamp() - pg_postmaster_start_time()))";

// What zelk, the questions between and a background process may add while zelk runs.
constexpr long kTransactionsOfARun = 60;

std::string serverName(const testing_support::PrivateServer& server) {
  return "postgresql://127.0.0.1:" + std::to_string(server.port()) + "/app";
}

class PostgresqlTest : public testing_support::ServerTest {
 protected:
  void SetUp() override {
    ServerTest::SetUp();
    admin_.run("CREATE TABLE orders (id int PRIMARY KEY); CREATE TABLE items (id int)");
    admin_.run("INSERT INTO orders SELECT generate_series(1, 1000)");
    for (const char* const name : {"alice", "bob", "carol", "dave", "erin", "frank"}) {
      admin_.run("DROP ROLE IF EXISTS " + std::string(name));
      admin_.run("CREATE ROLE " + std::string(name) + " LOGIN PASSWORD 'secret'" +
                 " IN ROLE pg_read_all_data, pg_write_all_data");
      users_.emplace(name, Session(server_.connectionString(name, "secret", "app"), name));
    }
    makeLoad();
  }

  // Asks all that holds still, before and after zelk does, so that it held between as well.
  std::map<std::string, std::string> facts() {
    EXPECT_TRUE(testing_support::waitUntil([this] {
      return admin_.value("SELECT count(*) FROM pg_stat_activity WHERE usename = 'zelk'") == "0";
    }));
    std::map<std::string, std::string> answers;
    for (const auto& [name, query] : kOwnFacts) answers[name] = admin_.value(query);
    answers["handle lines"] = rows(kHandles);
    answers["connection lines"] = rows(kConnections);
    return answers;
  }

  long number(const std::string& query) { return std::stol(admin_.value(query)); }

  void expectFacts(const Report& report, const std::map<std::string, std::string>& facts) {
    const std::string users = std::to_string(std::stoi(facts.at("users")) + 1);  // zelk's own
    const std::string others = facts.at("users");
    const auto gauge = [](const std::string& figure, const std::string& maximum) {
      return figure + " " + figure + " " + maximum;
    };
    const Values usage = {
        {"Engine Uptime",                 report.usage.at("Engine Uptime")},
        { "Files",        gauge(facts.at("files"),                     "unlimited")},
        { "Handles",      gauge(facts.at("handles"),                     "unlimited")},
        { "Clients",                   gauge(others,           facts.at("max_users"))},
        { "Worker Threads",      gauge(facts.at("workers"),         facts.at("max_workers"))},
        { "User Count",                    gauge(users,           facts.at("max_users"))},
        { "Session Count",                    gauge(users,                           "n/a")},
        { "Data in Use MB",         gauge(facts.at("data"),                           "n/a")},
        { "Transactions", gauge(facts.at("transactions"),                     "unlimited")},
        { "Locks",        gauge(facts.at("locks"),                     "unlimited")},
    };
    const Values communication = {
        {"Total Requests Processed",    report.communication.at("Total Requests Processed")                      },
        {"TCP/IP Requests Processed",   "0"                                                                      },
        {"Total Connection Timeouts",   admin_.value("SELECT sum(sessions_abandoned)"
                                                   " FROM pg_stat_database")},
        {"Total Connection Recoveries", "0"                                                                      },
        {"Communication Threads",       gauge(users,                                                               facts.at("backends"))},
        {"Total Remote Sessions",                             gauge(users,                                                                                facts.at("max_users"))},
        {"TCP/IP Remote Sessions",       users + " " + users},
    };

    EXPECT_EQ(report.version, facts.at("version"));
    EXPECT_EQ(report.usage, usage);
    EXPECT_EQ(report.communication, communication);
    expectLists(report, facts);
  }

  void expectLists(const Report& report, const std::map<std::string, std::string>& facts) {
    const auto announced = [&](const std::string& list) {
      return std::to_string(report.announced.at(list));
    };

    EXPECT_EQ(announced("files"), facts.at("files"));
    EXPECT_EQ(announced("files"), std::to_string(report.files.size()));
    EXPECT_EQ(announced("sessions"), facts.at("lockers"));
    EXPECT_EQ(announced("sessions"), std::to_string(report.sessions.size()));
    EXPECT_EQ(report.connections.size(), report.announced.at("connections"));
    EXPECT_PRED_FORMAT2(sameText, facts.at("handle lines"), handlesOfFiles(report));
    EXPECT_PRED_FORMAT2(sameText, facts.at("handle lines"), handlesOfSessions(report, "PID"));
    EXPECT_PRED_FORMAT2(
        sameText,
        sorted(linesOf(facts.at("connection lines") + "zelk 127.0.0.1 zelk app Active\n")),
        connectionLines(report));
  }

  // Milliseconds since a load's session changed its state.
  long period(const Session& session) {
    return number(
        "SELECT floor(1000 * extract(epoch FROM clock_timestamp() - state_change))"
        " FROM pg_stat_activity WHERE pid = " +
        std::to_string(session.process()));
  }

  // Alice has changed a row that Bob wants to change, Carol has locked a table that Dave wants to
  // read, Erin has read in a transaction, Frank does nothing.
  void makeLoad() {
    user("alice").run("BEGIN; UPDATE orders SET id = id WHERE id = 1");
    user("bob").start("UPDATE orders SET id = id WHERE id = 1");
    waitUntilBlocked(user("bob"));
    user("carol").run("BEGIN; LOCK TABLE items IN ACCESS EXCLUSIVE MODE");
    user("dave").start("SELECT * FROM items");
    waitUntilBlocked(user("dave"));
    user("erin").run("BEGIN; SELECT count(*) FROM orders");
  }

  Session& user(const std::string& name) { return users_.at(name); }

  std::map<std::string, Session> users_;

 private:
  std::string rows(const std::string& query) {
    return sorted(
        linesOf(admin_.value("SELECT string_agg(line, '') FROM (" + query + ") x (line)")));
  }
};

using Form = Report (Monitor::*)() const;

TEST_F(PostgresqlTest, BothFormsSayWhatTheServerSays) {
  const Monitor monitor({serverName(server_)});
  for (const Form form : {&Monitor::textReport, &Monitor::jsonReport}) {
    SCOPED_TRACE(form == &Monitor::textReport ? "text" : "JSON");
    const auto before = facts();
    const long uptimeBefore = number(kUptime);
    const long transactionsBefore = number(kTransactionsEver);

    const Report report = (monitor.*form)();

    const long transactionsAfter = number(kTransactionsEver);
    const long uptimeAfter = number(kUptime);
    ASSERT_EQ(before, facts());
    expectFacts(report, before);
    EXPECT_LE(uptimeBefore, uptimeSeconds(report));
    EXPECT_LE(uptimeSeconds(report), uptimeAfter);
    const long requests = std::stol(report.communication.at("Total Requests Processed"));
    EXPECT_LE(transactionsBefore, requests);
    EXPECT_LE(requests, transactionsAfter);
    EXPECT_LE(transactionsAfter - transactionsBefore, kTransactionsOfARun);
  }
}

TEST_F(PostgresqlTest, PeriodsLieBetweenWhatTheServerSaysBeforeAndAfter) {
  const Monitor monitor({serverName(server_)});
  std::map<std::string, long> before;
  for (const auto& [name, session] : users_) before[name] = period(session);

  const Report report = monitor.jsonReport();

  for (const Entry& connection : report.connections) {
    const std::string name = connection.values.at("Client Application");
    if (!before.contains(name)) continue;
    SCOPED_TRACE(name);
    const long shown = std::stol(connection.values.at("Active/Idle Period(ms)"));
    EXPECT_LE(before.at(name), shown);
    EXPECT_LE(shown, period(user(name)));
    before.erase(name);
  }
  EXPECT_TRUE(before.empty());
}

TEST_F(PostgresqlTest, TextAndJsonListTheSame) {
  const Monitor monitor({serverName(server_)});

  const Report text = monitor.textReport();
  const Report json = monitor.jsonReport();

  EXPECT_PRED_FORMAT2(sameText, describe(text.files), describe(json.files));
  EXPECT_PRED_FORMAT2(sameText, describe(text.sessions), describe(json.sessions));
}

}  // namespace
}  // namespace servers_testing
