// What each section of a refresh costs: statements as the server counts them, and milliseconds,
// beside the server's own command-line client asking the same statements in the same run.
//
//   mariadb_refresh_cost <port> <socket> <connections> <tables>
//
// The server must be empty, and its root must need no password through the socket.
#include <mysql.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "tal/mariadb/mariadb.h"
#include "tal/mariadb/statements.h"

namespace {

constexpr int kRuns = 25;

struct Close {
  void operator()(MYSQL* mysql) const noexcept { mysql_close(mysql); }
};
using Connection = std::unique_ptr<MYSQL, Close>;

Connection connect(const char* host, const char* user, unsigned int port, const char* socket) {
  Connection connection(mysql_init(nullptr));
  if (mysql_real_connect(connection.get(), host, user, "", nullptr, port, socket, 0) == nullptr) {
    throw std::runtime_error(mysql_error(connection.get()));
  }
  return connection;
}

std::string ask(MYSQL* mysql, const std::string& statement) {
  if (mysql_query(mysql, statement.c_str()) != 0) throw std::runtime_error(mysql_error(mysql));
  MYSQL_RES* const rows = mysql_store_result(mysql);
  if (rows == nullptr) return {};
  const MYSQL_ROW row = mysql_fetch_row(rows);
  std::string value = row != nullptr && row[0] != nullptr ? row[0] : "";
  mysql_free_result(rows);
  return value;
}

void makeTables(MYSQL* root, int count) {
  ask(root, "CREATE DATABASE load_of_tables");
  for (int i = 0; i < count; ++i) {
    const std::string table = "load_of_tables.t" + std::to_string(i);
    ask(root, "CREATE TABLE " + table + " (id INT PRIMARY KEY) ENGINE=InnoDB");
    ask(root, "INSERT INTO " + table + " VALUES (1), (2)");
  }
}

void makeAccount(MYSQL* root) {
  ask(root, "CREATE USER zelk@'127.0.0.1'");
  ask(root, "GRANT PROCESS ON *.* TO zelk@'127.0.0.1'");
  ask(root, "GRANT SELECT ON performance_schema.* TO zelk@'127.0.0.1'");
}

// The middle one of many runs.
double milliseconds(const std::function<void()>& action) {
  std::vector<double> all;
  for (int i = 0; i < kRuns; ++i) {
    const auto start = std::chrono::steady_clock::now();
    action();
    const auto taken = std::chrono::steady_clock::now() - start;
    all.push_back(std::chrono::duration<double, std::milli>(taken).count());
  }
  std::sort(all.begin(), all.end());
  return all[kRuns / 2];
}

// Statements that clients have sent; asking is one of them.
long questions(MYSQL* root) {
  return std::stol(ask(root,
                       "SELECT variable_value FROM information_schema.global_status"
                       " WHERE variable_name = 'QUESTIONS'"));
}

struct Section {
  const char* name;
  std::function<void()> action;
  std::vector<const char*> statements;
};

long statementsOf(const Section& section, MYSQL* root) {
  const long before = questions(root);
  section.action();
  return questions(root) - before - 1;
}

void report(const Section& section, long asked, unsigned int port) {
  const double ours = milliseconds(section.action);

  const std::string client =
      "mariadb --no-defaults -h 127.0.0.1 -P " + std::to_string(port) + " -u zelk -E >/dev/null";
  const double theirs = milliseconds([&] {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(client.c_str(), "w"), ::pclose);
    for (const char* const statement : section.statements) {
      std::fprintf(pipe.get(), "%s;\n", statement);
    }
  });
  std::printf("%-16s %5ld statements  %8.2f ms  mariadb -E %8.2f ms\n", section.name, asked, ours,
              theirs);
}

void run(unsigned int port, const char* socket, int connections, int tables) {
  const Connection root = connect(nullptr, "root", 0, socket);
  makeTables(root.get(), tables);
  makeAccount(root.get());
  const auto engine = tal::mariadb::open("127.0.0.1:" + std::to_string(port), {"zelk", ""});
  std::vector<Connection> idle;
  for (int i = 0; i < connections; ++i) {
    idle.push_back(connect("127.0.0.1", "zelk", port, nullptr));
    ask(idle.back().get(), "SELECT 1");
  }

  using tal::mariadb::kClients;
  using tal::mariadb::kCommunication;
  using tal::mariadb::kFiles;
  using tal::mariadb::kHandles;
  using tal::mariadb::kSqlConnections;
  using tal::mariadb::kUsage;
  std::printf("%d connections, %d tables, medians of %d\n", connections, tables, kRuns);
  const std::vector<Section> sections = {
      {"usage",           [&] { engine->usage(); },          {kUsage}                    },
      {"communication",   [&] { engine->communication(); },  {kCommunication}            },
      {"files",           [&] { engine->openFiles(); },      {kHandles, kFiles}          },
      {"clients",         [&] { engine->clients(); },        {kClients, kHandles, kFiles}},
      {"sql connections", [&] { engine->sqlConnections(); }, {kSqlConnections}           },
  };
  // Counted before other clients come and go.
  std::vector<long> asked;
  for (const Section& section : sections) asked.push_back(statementsOf(section, root.get()));
  for (std::size_t i = 0; i < sections.size(); ++i) report(sections[i], asked[i], port);
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 5) {
    std::fputs("usage: mariadb_refresh_cost <port> <socket> <connections> <tables>\n", stderr);
    return 2;
  }
  try {
    run(static_cast<unsigned int>(std::stoul(arguments[1])), arguments[2], std::stoi(arguments[3]),
        std::stoi(arguments[4]));
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
