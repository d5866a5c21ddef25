#include "tests/mariadb/session.h"

#include <stdexcept>
#include <utility>

#include "tal/mariadb/login.h"
#include "tests/mariadb/private_server.h"

namespace mariadb_testing {

Session::Session(const PrivateServer& server, const std::string& user, const std::string& program)
    : mysql_(logIn("127.0.0.1", user, "secret", server.port(), nullptr, program)) {}

Session Session::administrator(const PrivateServer& server) {
  return Session(logIn(nullptr, "root", "", 0, server.socketPath().c_str()));
}

bool Session::canLogIn(const std::string& socketPath) {
  try {
    logIn(nullptr, "root", "", 0, socketPath.c_str());
    return true;
  } catch (const std::runtime_error&) {
    return false;
  }
}

Session::Handle Session::logIn(const char* host, const std::string& user, const char* password,
                               unsigned int port, const char* socket, const std::string& program) {
  tal::mariadb::initialiseClientLibrary();
  Handle handle(mysql_init(nullptr));
  mysql_options(handle.get(), MYSQL_SET_CHARSET_NAME, "utf8mb4");
  if (!program.empty()) {
    mysql_optionsv(handle.get(), MYSQL_OPT_CONNECT_ATTR_ADD, "program_name", program.c_str());
  }
  if (mysql_real_connect(handle.get(), host, user.c_str(), password, nullptr, port, socket, 0) ==
      nullptr) {
    throw std::runtime_error(mysql_error(handle.get()));
  }
  return handle;
}

std::uint32_t Session::id() const {
  return static_cast<std::uint32_t>(mysql_thread_id(mysql_.get()));
}

void Session::require(bool done) {
  if (!done) throw std::runtime_error(mysql_error(mysql_.get()));
}

void Session::execute(const std::string& statement) { column(statement); }

void Session::executeAll(const std::vector<std::string>& statements) {
  for (const std::string& statement : statements) execute(statement);
}

std::string Session::value(const std::string& statement) {
  const std::vector<std::string> values = column(statement);
  return values.empty() ? std::string() : values.front();
}

std::vector<std::string> Session::column(const std::string& statement) {
  require(mysql_real_query(mysql_.get(), statement.data(), statement.size()) == 0);
  MYSQL_RES* const rows = mysql_store_result(mysql_.get());
  require(rows != nullptr || mysql_errno(mysql_.get()) == 0);

  std::vector<std::string> values;
  while (MYSQL_ROW row = rows == nullptr ? nullptr : mysql_fetch_row(rows)) {
    values.emplace_back(row[0] == nullptr ? "" : row[0]);
  }
  mysql_free_result(rows);
  return values;
}

void Session::start(const std::string& statement) {
  require(mysql_send_query(mysql_.get(), statement.data(), statement.size()) == 0);
}

}  // namespace mariadb_testing
