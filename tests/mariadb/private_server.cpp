#include "tests/mariadb/private_server.h"

#include <pwd.h>
#include <signal.h>
#include <unistd.h>

#include <stdexcept>

#include "tests/mariadb/loopback.h"
#include "tests/mariadb/session.h"
#include "tests/mariadb/wait_until.h"

namespace mariadb_testing {
namespace {

// Makes the data and a certificate, runs the server on them and tells its process id; at a line on
// its standard input kills the server and runs it again, at the end kills it and removes the
// folder. A terminal's interrupt must not end it before that.
constexpr const char* kGuardian = R"(
  trap '' INT TERM HUP
  folder=$1
  shift
  mariadb-install-db --no-defaults --datadir="$folder/data" --skip-test-db \
    --innodb-flush-method=nosync --innodb-log-file-size=8M --auth-root-authentication-method=normal >"$folder/install.log" 2>&1
  openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 \
    -subj /CN=localhost -keyout "$folder/key.pem" -out "$folder/ca.pem" 2>>"$folder/install.log"
  goOn=yes
  while [ "$goOn" ]; do
    setpriv --pdeathsig KILL mariadbd --no-defaults --datadir="$folder/data" "$@" \
      >"$folder/server.log" 2>&1 </dev/null &
    echo "server $!"
    read -r line || goOn=
    kill -KILL $!
    wait
  done
  rm -rf "$folder"
)";

// The server refuses to run as root.
std::vector<std::string> asOrdinaryUser(const std::filesystem::path& folder) {
  if (::geteuid() != 0) return {};
  const passwd* const user = ::getpwnam("nobody");
  if (user == nullptr || ::chown(folder.c_str(), user->pw_uid, user->pw_gid) != 0) {
    throw std::runtime_error("no ordinary user to run a server");
  }
  return {"--reuid=" + std::to_string(user->pw_uid), "--regid=" + std::to_string(user->pw_gid),
          "--clear-groups"};
}

std::vector<std::string> ownOptions(const std::string& socket, std::uint16_t port) {
  return {"--socket=" + socket,
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
    : port_(freePort()) {
  std::vector<std::string> all = ownOptions(socketPath(), port_);
  if (encryption == Encryption::kOffered) {
    all.push_back("--ssl-cert=" + certificate());
    all.push_back("--ssl-key=" + (folder_ / "key.pem").string());
  }
  all.insert(all.end(), options.begin(), options.end());
  start(all);
  waitUntilReady();
}

PrivateServer::~PrivateServer() {
  guardian_->closeInput();
  guardian_->wait();
}

void PrivateServer::start(const std::vector<std::string>& options) {
  std::vector<std::string> arguments = asOrdinaryUser(folder_.path());
  arguments.insert(arguments.end(), {"/bin/sh", "-c", kGuardian, "guardian", folder_.path()});
  arguments.insert(arguments.end(), options.begin(), options.end());

  guardian_ = std::make_unique<testing_support::Process>(
      testing_support::Command{.program = "/usr/bin/setpriv",
                               .arguments = arguments,
                               .environment = {{"PATH", "/usr/sbin:/usr/bin:/sbin:/bin"}},
                               .folder = "/",
                               .input = testing_support::Input::pipe()});
  waitForProcess();
}

void PrivateServer::restart() {
  guardian_->write("again\n");
  waitForProcess();
  waitUntilReady();
}

void PrivateServer::waitForProcess() {
  const std::string told = "server ";
  if (!guardian_->waitForOutput("\n", ++starts_)) throw std::runtime_error("no guardian");
  process_ = std::stoi(guardian_->output().substr(guardian_->output().rfind(told) + told.size()));
}

void PrivateServer::waitUntilReady() {
  const bool ready = waitUntil([this] { return Session::canLogIn(socketPath()); });
  if (!ready) {
    throw std::runtime_error("the server does not start: " +
                             testing_support::readFile(folder_ / "server.log"));
  }
}

}  // namespace mariadb_testing
