// A PostgreSQL server of the tests' own.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace testing_support {

// A server on loopback with a new, empty cluster in a temporary folder. A guardian process stops it
// and removes the folder as soon as this object, or the process that holds it, is gone: after a
// crash too. Runs under root (the server then runs as an ordinary user) and under any user. Its
// superuser is "postgres"; every login needs a password, over the network and through the socket.
class PrivateServer {
 public:
  static constexpr const char* kPassword = "secret";

  // Starts a server and waits until it answers. Throws std::runtime_error when it does not.
  PrivateServer();
  PrivateServer(const PrivateServer&) = delete;
  PrivateServer& operator=(const PrivateServer&) = delete;
  ~PrivateServer();

  [[nodiscard]] std::uint16_t port() const { return port_; }
  // The folder of the server's socket.
  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
  // A connection string for the client library.
  [[nodiscard]] std::string connectionString(const std::string& user, const std::string& password,
                                             const std::string& database) const;
  // All that the server has logged so far.
  [[nodiscard]] std::string log() const;
  // Of the server's first process, for signals. Throws std::runtime_error when there is none.
  [[nodiscard]] pid_t process() const;
  // Ends all sessions and starts again on the same data and port. Returns when it answers.
  void restart();
  // Shuts down at once: sessions are cut off, later logins find nobody. Returns when it is done.
  void stop();

 private:
  void waitUntilReady();

  std::filesystem::path folder_;
  std::uint16_t port_ = 0;
  pid_t guardian_ = -1;
  int lifeLine_ = -1;  // of the guardian: see guardServer
};

}  // namespace testing_support
