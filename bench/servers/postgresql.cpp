#include <libpq-fe.h>

#include <stdexcept>

#include "bench/servers/server.h"
#include "tal/postgresql/statements.h"

namespace bench {
namespace {

struct Close {
  void operator()(PGconn* connection) const noexcept { PQfinish(connection); }
};
using Connection = std::unique_ptr<PGconn, Close>;

struct Clear {
  void operator()(PGresult* result) const noexcept { PQclear(result); }
};

Connection connect(const Place& place) {
  const std::string target = "host=" + place.socketFolder + " user=postgres dbname=postgres";
  Connection connection(PQconnectdb(target.c_str()));
  if (PQstatus(connection.get()) != CONNECTION_OK) {
    throw std::runtime_error(PQerrorMessage(connection.get()));
  }
  return connection;
}

std::string ask(PGconn* connection, const std::string& statement) {
  const std::unique_ptr<PGresult, Clear> result(PQexec(connection, statement.c_str()));
  const ExecStatusType status = PQresultStatus(result.get());
  if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
    throw std::runtime_error(PQerrorMessage(connection));
  }
  return PQntuples(result.get()) > 0 ? PQgetvalue(result.get(), 0, 0) : "";
}

class Postgresql : public Server {
 public:
  Postgresql(Place place, int sessions, int tables)
      : place_(std::move(place)), admin_(connect(place_)) {
    ask(admin_.get(), "CREATE EXTENSION pg_stat_statements");
    ask(admin_.get(), "CREATE ROLE zelk LOGIN IN ROLE pg_read_all_stats");
    for (int i = 0; i < tables; ++i) {
      std::string statement = "CREATE TABLE t";
      ask(admin_.get(), statement += std::to_string(i) + " AS SELECT 1 AS id");
    }
    for (int i = 0; i < sessions; ++i) {
      sessions_.push_back(connect(place_));
      ask(sessions_.back().get(), "BEGIN");
      ask(sessions_.back().get(), "SELECT id FROM t" + std::to_string(i % tables));
    }
  }

  [[nodiscard]] std::string name() const override { return "postgresql://" + place_.socketFolder; }
  [[nodiscard]] Statements statements() const override {
    using namespace tal::postgresql;
    return {.files = {filesStatement().text},
            .sessions = {clientsStatement().text},
            .connections = {sqlConnectionsStatement().text},
            .resources = {usageStatement().text},
            .communications = {communicationStatement().text}};
  }
  [[nodiscard]] std::vector<std::string> client(const std::string& file) const override {
    return {place_.programs + "/psql",
            "-X",
            "-q",
            "-x",
            "-h",
            place_.socketFolder,
            "-U",
            "zelk",
            "-d",
            "postgres",
            "-f",
            file};
  }
  long statementsSent() override {
    return std::stol(ask(admin_.get(),
                         "SELECT coalesce(sum(calls), 0) FROM pg_stat_statements"
                         " WHERE userid = 'zelk'::regrole"));
  }

 private:
  Place place_;
  Connection admin_;
  std::vector<Connection> sessions_;
};

}  // namespace

std::unique_ptr<Server> loadPostgresql(const Place& place, int sessions, int tables) {
  return std::make_unique<Postgresql>(place, sessions, tables);
}

}  // namespace bench
