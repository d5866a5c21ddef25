#include "tests/postgresql/session.h"

#include <stdexcept>

namespace testing_support {
namespace {

using Result = std::unique_ptr<PGresult, decltype(&PQclear)>;

Result execute(PGconn* connection, const std::string& statements) {
  return {PQexec(connection, statements.c_str()), &PQclear};
}

bool failed(const PGresult* result) { return PQresultStatus(result) == PGRES_FATAL_ERROR; }

void dropNotice(void* /*argument*/, const char* /*text*/) {}

}  // namespace

Session::Session(const std::string& connectionString, const std::string& name)
    : connection_(PQconnectdb((connectionString + " application_name=" + name).c_str()), &PQfinish),
      name_(name) {
  if (PQstatus(connection_.get()) != CONNECTION_OK) {
    throw std::runtime_error(PQerrorMessage(connection_.get()));
  }
  PQsetNoticeProcessor(connection_.get(), &dropNotice, nullptr);
}

void Session::run(const std::string& statements) {
  if (failed(execute(connection_.get(), statements).get())) {
    throw std::runtime_error(statements + ": " + PQerrorMessage(connection_.get()));
  }
}

void Session::runFailing(const std::string& statements) {
  if (!failed(execute(connection_.get(), statements).get())) {
    throw std::runtime_error(statements + ": did not fail");
  }
}

std::string Session::value(const std::string& query) {
  const Result result = execute(connection_.get(), query);
  if (failed(result.get())) {
    throw std::runtime_error(query + ": " + PQerrorMessage(connection_.get()));
  }
  return PQntuples(result.get()) > 0 ? PQgetvalue(result.get(), 0, 0) : "";
}

void Session::start(const std::string& statement) {
  if (PQsendQuery(connection_.get(), statement.c_str()) != 1) {
    throw std::runtime_error(statement + ": " + PQerrorMessage(connection_.get()));
  }
}

}  // namespace testing_support
