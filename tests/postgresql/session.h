// A user's session on the private server.
#pragma once

#include <libpq-fe.h>

#include <memory>
#include <string>

namespace testing_support {

class Session {
 public:
  // Logs in; `name` is the application name. Throws std::runtime_error when that fails.
  Session(const std::string& connectionString, const std::string& name);

  // Runs statements. Throws std::runtime_error with the server's text when one fails.
  void run(const std::string& statements);
  // Runs statements of which one must fail. Throws std::runtime_error when none does.
  void runFailing(const std::string& statements);
  // The first column of the first row, empty for NULL and when there is no row.
  std::string value(const std::string& query);
  // Sends a statement that will have to wait; its end is not looked at.
  void start(const std::string& statement);

  // The process that serves the session.
  [[nodiscard]] int process() const { return PQbackendPID(connection_.get()); }
  [[nodiscard]] const std::string& name() const { return name_; }

 private:
  std::unique_ptr<PGconn, decltype(&PQfinish)> connection_;
  std::string name_;
};

}  // namespace testing_support
