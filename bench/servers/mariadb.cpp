#include <mysql.h>

#include <stdexcept>

#include "bench/servers/server.h"
#include "tal/mariadb/statements.h"

namespace bench {
namespace {

struct Close {
  void operator()(MYSQL* mysql) const noexcept { mysql_close(mysql); }
};
using Connection = std::unique_ptr<MYSQL, Close>;

std::string socketIn(const Place& place) { return place.socketFolder + "/sock"; }

Connection connect(const Place& place) {
  Connection connection(mysql_init(nullptr));
  if (mysql_real_connect(connection.get(), nullptr, "root", "", nullptr, 0, socketIn(place).c_str(),
                         0) == nullptr) {
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

class Mariadb : public Server {
 public:
  Mariadb(Place place, int sessions, int tables)
      : place_(std::move(place)), admin_(connect(place_)) {
    ask(admin_.get(), "CREATE USER zelk@localhost");
    ask(admin_.get(), "GRANT PROCESS ON *.* TO zelk@localhost");
    ask(admin_.get(), "GRANT SELECT ON performance_schema.* TO zelk@localhost");
    ask(admin_.get(), "CREATE DATABASE app");
    for (int i = 0; i < tables; ++i) {
      ask(admin_.get(), "CREATE TABLE app.t" + std::to_string(i) + " (id INT PRIMARY KEY)");
    }
    for (int i = 0; i < sessions; ++i) {
      sessions_.push_back(connect(place_));
      ask(sessions_.back().get(), "BEGIN");
      ask(sessions_.back().get(), "SELECT id FROM app.t" + std::to_string(i % tables));
    }
  }

  [[nodiscard]] std::string name() const override { return "mariadb://" + socketIn(place_); }
  [[nodiscard]] Statements statements() const override {
    using namespace tal::mariadb;
    return {
        .files = {kLocks,  kFiles},
        .sessions = {kClients,       kLocks, kFiles},
        .connections = {kSqlConnections},
        .resources = {kUsage      },
        .communications = {kCommunication            }
    };
  }
  [[nodiscard]] std::vector<std::string> client(const std::string& file) const override {
    return {place_.programs + "/mariadb",
            "--no-defaults",
            "-E",
            "-S",
            socketIn(place_),
            "-u",
            "zelk",
            "-e",
            "source " + file};
  }
  long statementsSent() override {
    const long questions = std::stol(ask(admin_.get(),
                                         "SELECT variable_value FROM information_schema"
                                         ".global_status WHERE variable_name = 'QUESTIONS'"));
    return questions - ++asked_;
  }

 private:
  Place place_;
  Connection admin_;
  std::vector<Connection> sessions_;
  long asked_ = 0;
};

}  // namespace

std::unique_ptr<Server> loadMariadb(const Place& place, int sessions, int tables) {
  return std::make_unique<Mariadb>(place, sessions, tables);
}

}  // namespace bench
