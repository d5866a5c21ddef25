// A user's session on a server.
#pragma once

#include <mysql.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace mariadb_testing {

class PrivateServer;

// Throws std::runtime_error with the server's words when a statement fails.
class Session {
 public:
  // Logs in by TCP as "app", or as `user` with the password "secret"; says that it is `program`.
  explicit Session(const PrivateServer& server, const std::string& user = "app",
                   const std::string& program = "");
  // Logs in as root through the socket.
  static Session administrator(const PrivateServer& server);
  static bool canLogIn(const std::string& socketPath);

  [[nodiscard]] std::uint32_t id() const;

  void execute(const std::string& statement);
  void executeAll(const std::vector<std::string>& statements);
  // First column of the first row; empty when there is none.
  std::string value(const std::string& statement);
  std::vector<std::string> column(const std::string& statement);

  // Sends a statement and does not wait for its end; nothing else can be sent any more.
  void start(const std::string& statement);

 private:
  struct Close {
    void operator()(MYSQL* mysql) const noexcept { mysql_close(mysql); }
  };
  using Handle = std::unique_ptr<MYSQL, Close>;

  explicit Session(Handle handle) : mysql_(std::move(handle)) {}
  static Handle logIn(const char* host, const std::string& user, const char* password,
                      unsigned int port, const char* socket, const std::string& program = "");
  void require(bool done);

  Handle mysql_;
};

}  // namespace mariadb_testing
