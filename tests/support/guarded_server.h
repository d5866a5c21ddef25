// A database server of the tests' own, of whatever kind.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/file_descriptor.h"
#include "tests/support/loopback.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace testing_support {

// How to create and run one kind of server.
struct ServerPlan {
  const char* user = nullptr;        // runs it if the tests run as root, which servers refuse
  std::string prepare;               // shell commands that make its data in the folder "$folder"
  std::vector<std::string> command;  // what runs until the signal below
  int stopSignal = 0;                // ends the server and all sessions at once
  std::function<bool()> answers;     // whether it has come so far that it lets clients in
};

// A server on loopback with new data in a temporary folder, on a port of its own. A guardian
// process stops it and removes the folder as soon as this object, or the process that holds it, is
// gone: after a crash too. Runs under root (the server then runs as an ordinary user) and under any
// user.
class GuardedServer {
 public:
  using Planner =
      std::function<ServerPlan(const std::filesystem::path& folder, std::uint16_t port)>;

  // Starts the server and waits until it answers. If the server ends instead, throws
  // std::runtime_error with its log at once.
  explicit GuardedServer(const Planner& planner);
  GuardedServer(const GuardedServer&) = delete;
  GuardedServer& operator=(const GuardedServer&) = delete;
  ~GuardedServer();

  [[nodiscard]] std::uint16_t port() const { return port_.number(); }
  [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }
  // Of the server itself, for signals.
  [[nodiscard]] pid_t process() const { return process_; }
  // All that the server has logged so far.
  [[nodiscard]] std::string log() const;

  // Throws std::runtime_error with the log if the server has ended.
  void requireRunning() const;

  // Stops the server and starts it again on the same data and port. Returns when it answers.
  void restart();
  // Stops the server: sessions are cut off, and later logins find no server. Returns when it has
  // ended.
  void stop();

 private:
  void startGuardian();
  void waitForProcess();
  void waitUntilReady();
  [[nodiscard]] bool hasEnded() const;

  TemporaryFolder folder_;
  ReservedPort port_;
  ServerPlan plan_;
  std::unique_ptr<Process> guardian_;
  int starts_ = 0;
  pid_t process_ = -1;
  FileDescriptor handle_;  // of the process: readable when it has ended
};

}  // namespace testing_support
