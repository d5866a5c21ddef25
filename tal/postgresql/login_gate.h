// Checks the requests of a server before the client library answers them.
#pragma once

#include <libpq-fe.h>

#include <cstddef>
#include <string>

#include "tal/sql/deadline.h"

namespace tal::postgresql {

// A descriptor that is closed with its owner.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor();

  [[nodiscard]] int number() const { return number_; }

 private:
  int number_;
};

// Stands between the client library and the server during a login without encryption, because the
// library would send the password in clear text to any server that requests it. The gate takes the
// place of the library's socket, lets the server's messages in one by one, and refuses requests
// that would reveal the password, messages that no server sends, and floods.
class LoginGate {
 public:
  // Create it after the library has sent its first message and before it reads anything. Throws
  // Failure(kInternalError) if the system cannot make sockets.
  explicit LoginGate(PGconn* connection);
  LoginGate(const LoginGate&) = delete;
  LoginGate& operator=(const LoginGate&) = delete;

  // Passes on what the library has written since, then waits for one message of the server and
  // lets it in. The end of the server's messages is passed on too. Throws Failure: kUnsafeLogin,
  // kOtherProtocol, kAnswerTooLarge, kNoAnswer when `deadline` passes.
  void exchange(const sql::Deadline& deadline);

  // Gives the library its own socket back. After that only the destructor may be called.
  void leave();

 private:
  void letOut(const sql::Deadline& deadline);
  [[nodiscard]] std::string receive(std::size_t size, const sql::Deadline& deadline) const;
  [[nodiscard]] std::string message(const sql::Deadline& deadline);
  void letIn(const std::string& message);

  PGconn* connection_;
  Descriptor server_;   // the library's own socket
  int ends_[2];         // of the pair that takes its place: the library's, ours
  Descriptor library_;  // ours
  std::size_t received_ = 0;
};

}  // namespace tal::postgresql
