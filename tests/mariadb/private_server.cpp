#include "tests/mariadb/private_server.h"

#include <signal.h>

#include "tests/mariadb/session.h"

namespace mariadb_testing {
namespace {

using testing_support::ServerPlan;

// The data and a certificate. Each server has its own folder for temporary files, because a server
// that starts removes those of every other server from a folder that they share.
constexpr const char* kPrepare = R"(
  export TMPDIR="$folder"
  mariadb-install-db --no-defaults --datadir="$folder/data" --skip-test-db \
    --innodb-flush-method=nosync --innodb-log-file-size=8M --auth-root-authentication-method=normal
  openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 \
    -subj /CN=localhost -keyout "$folder/key.pem" -out "$folder/ca.pem"
)";

std::vector<std::string> ownCommand(const std::filesystem::path& folder, std::uint16_t port) {
  return {"mariadbd",
          "--no-defaults",
          "--datadir=" + (folder / "data").string(),
          "--tmpdir=" + folder.string(),
          "--socket=" + (folder / "sock").string(),
          "--port=" + std::to_string(port),
          "--bind-address=127.0.0.1",
          "--skip-name-resolve",
          "--innodb-buffer-pool-size=16M",
          "--innodb-flush-method=nosync",
          "--innodb-log-file-size=8M",
          "--innodb-flush-log-at-trx-commit=0",
          "--innodb-lock-wait-timeout=100",
          "--max-connections=40"};
}

}  // namespace

PrivateServer::PrivateServer(Encryption encryption, const std::vector<std::string>& options)
    : GuardedServer([&](const std::filesystem::path& folder, std::uint16_t port) {
        std::vector<std::string> command = ownCommand(folder, port);
        if (encryption == Encryption::kOffered) {
          command.push_back("--ssl-cert=" + (folder / "ca.pem").string());
          command.push_back("--ssl-key=" + (folder / "key.pem").string());
        }
        command.insert(command.end(), options.begin(), options.end());
        const std::string socket = folder / "sock";
        return ServerPlan{.user = "nobody",
                          .prepare = kPrepare,
                          .command = command,
                          .stopSignal = SIGKILL,
                          .answers = [socket] { return Session::canLogIn(socket); }};
      }) {}

}  // namespace mariadb_testing
