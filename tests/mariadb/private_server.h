// A MariaDB server of the tests' own.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace mariadb_testing {

// A server on loopback with new, empty data in a temporary folder. A guardian process stops it and
// removes the folder as soon as this object, or the process that holds it, is gone: after a crash
// too. Runs under root (the server then runs as an ordinary user) and under any user. Its "root"
// needs no password, and is admitted through the socket only.
class PrivateServer {
 public:
  enum class Encryption { kNone, kOffered };

  // Starts a server with these options beside its own and waits until it answers. Throws
  // std::runtime_error when it does not.
  explicit PrivateServer(Encryption encryption, const std::vector<std::string>& options = {});
  PrivateServer(const PrivateServer&) = delete;
  PrivateServer& operator=(const PrivateServer&) = delete;
  ~PrivateServer();

  [[nodiscard]] std::uint16_t port() const { return port_; }
  [[nodiscard]] std::string socketPath() const { return folder_ / "sock"; }
  [[nodiscard]] std::filesystem::path dataFolder() const { return folder_ / "data"; }

  // The certificate by which it encrypts, if it does: its own authority, made out to "localhost".
  [[nodiscard]] std::string certificate() const { return folder_ / "ca.pem"; }

  // Of the server itself, for signals.
  [[nodiscard]] pid_t process() const { return process_; }

  // Kills the server and starts it again on the same data and port. Returns when it answers.
  void restart();

 private:
  void start(const std::vector<std::string>& options);
  void waitForProcess();
  void waitUntilReady();

  testing_support::TemporaryFolder folder_;
  std::uint16_t port_ = 0;
  std::unique_ptr<testing_support::Process> guardian_;
  int starts_ = 0;
  pid_t process_ = -1;
};

}  // namespace mariadb_testing
