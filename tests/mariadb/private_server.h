// A MariaDB server of the tests' own.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/guarded_server.h"

namespace mariadb_testing {

// A new, empty server. Its "root" needs no password, and is admitted through the socket only.
class PrivateServer : public testing_support::GuardedServer {
 public:
  enum class Encryption { kNone, kOffered };

  // Starts a server with these options besides its own and waits until it answers.
  explicit PrivateServer(Encryption encryption, const std::vector<std::string>& options = {});

  [[nodiscard]] std::string socketPath() const { return folder() / "sock"; }
  [[nodiscard]] std::filesystem::path dataFolder() const { return folder() / "data"; }

  // The certificate by which it encrypts, if it does: its own authority, made out to "localhost".
  [[nodiscard]] std::string certificate() const { return folder() / "ca.pem"; }
  [[nodiscard]] std::string certificateKey() const { return folder() / "key.pem"; }
};

}  // namespace mariadb_testing
