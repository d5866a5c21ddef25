// A database server that is under load, and how it is asked.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace bench {

// The statements behind each section of a report, as its engine sends them.
struct Statements {
  std::vector<std::string> files;
  std::vector<std::string> sessions;
  std::vector<std::string> connections;
  std::vector<std::string> resources;
  std::vector<std::string> communications;
};

// Where the private server is.
struct Place {
  std::string socketFolder;
  std::string programs;  // the folder of the server's own command-line client
};

// Tables, an account "zelk" without a password, and sessions, each in a transaction that has read
// one of the tables. They last as long as the object.
class Server {
 public:
  Server() = default;
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  virtual ~Server() = default;

  // What SERV would be.
  [[nodiscard]] virtual std::string name() const = 0;
  [[nodiscard]] virtual Statements statements() const = 0;
  // The command that runs the statements in a file as zelk and prints a line for each column.
  [[nodiscard]] virtual std::vector<std::string> client(const std::string& file) const = 0;
  // How many statements clients have sent, as the server counts them; asking is not counted.
  virtual long statementsSent() = 0;
};

// The servers must be new and let their superuser in without a password. Throws std::runtime_error.
std::unique_ptr<Server> loadPostgresql(const Place& place, int sessions, int tables);
std::unique_ptr<Server> loadMariadb(const Place& place, int sessions, int tables);

}  // namespace bench
