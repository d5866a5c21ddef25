// A PostgreSQL server of the tests' own.
#pragma once

#include <string>

#include "tests/support/guarded_server.h"

namespace testing_support {

// A new, empty cluster. Its superuser is "postgres"; every login needs a password, over the network
// and through the socket, which is in folder().
class PrivateServer : public GuardedServer {
 public:
  static constexpr const char* kPassword = "secret";

  // Starts a server and waits until it answers.
  PrivateServer();
  // A standby of `primary`, with a copy of its data. Replay waits for readers without a limit.
  explicit PrivateServer(const PrivateServer& primary);

  // A connection string for the client library.
  [[nodiscard]] std::string connectionString(const std::string& user, const std::string& password,
                                             const std::string& database) const;
};

}  // namespace testing_support
