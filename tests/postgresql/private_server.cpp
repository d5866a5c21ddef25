#include "tests/postgresql/private_server.h"

#include <libpq-fe.h>
#include <signal.h>

#include <algorithm>
#include <charconv>

namespace testing_support {
namespace {

namespace fs = std::filesystem;

// Shared memory stands in the cluster's folder: with it goes what a killed server could not remove.
constexpr const char* kPrepare = R"(
  echo secret >"$folder/password"
  initdb -D "$folder/data" -U postgres -A scram-sha-256 --pwfile="$folder/password" \
    --locale=C --encoding=UTF8 --no-sync
  cat >>"$folder/data/postgresql.conf" <<END
listen_addresses = '127.0.0.1'
unix_socket_directories = '$folder'
dynamic_shared_memory_type = mmap
max_connections = 40
max_prepared_transactions = 10
fsync = off
autovacuum = off
autovacuum_naptime = 1
log_line_prefix = '%a|'
END
)";

// The settings are those of the primary, except these.
constexpr const char* kCopy = R"(
  pg_basebackup -D "$folder/data" -d "$primary" --checkpoint=fast --write-recovery-conf --no-sync
  cat >>"$folder/data/postgresql.conf" <<END
unix_socket_directories = '$folder'
max_standby_streaming_delay = -1
END
)";

// Where the server's programs are: distributions keep one folder for each version.
fs::path newestPrograms() {
  int newest = 0;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator("/usr/lib/postgresql", error)) {
    const std::string name = entry.path().filename();
    int version = 0;
    std::from_chars(name.data(), name.data() + name.size(), version);
    if (fs::exists(entry.path() / "bin/initdb")) newest = std::max(newest, version);
  }
  return newest > 0 ? "/usr/lib/postgresql/" + std::to_string(newest) + "/bin" : "/usr/bin";
}

std::string targetAt(std::uint16_t port, const std::string& user, const std::string& password,
                     const std::string& database) {
  return "host=127.0.0.1 port=" + std::to_string(port) + " user=" + user + " password=" + password +
         " dbname=" + database;
}

ServerPlan planFor(const std::string& prepare, const fs::path& folder, std::uint16_t port) {
  const fs::path programs = newestPrograms();
  const std::string target = targetAt(port, "postgres", PrivateServer::kPassword, "postgres");
  return {
      .user = "postgres",
      .prepare = "PATH=" + programs.string() + ":$PATH\n" + prepare,
      .command = {programs / "postgres", "-D", folder / "data", "-p", std::to_string(port)},
      .stopSignal = SIGQUIT,
      .answers = [target] { return PQping(target.c_str()) == PQPING_OK;}
  };
}

}  // namespace

PrivateServer::PrivateServer()
    : GuardedServer([](const fs::path& folder, std::uint16_t port) {
        return planFor(kPrepare, folder, port);
      }) {}

PrivateServer::PrivateServer(const PrivateServer& primary)
    : GuardedServer([&primary](const fs::path& folder, std::uint16_t port) {
        const std::string target = primary.connectionString("postgres", kPassword, "postgres");
        return planFor("primary='" + target + "'\n" + kCopy, folder, port);
      }) {}

std::string PrivateServer::connectionString(const std::string& user, const std::string& password,
                                            const std::string& database) const {
  return targetAt(port(), user, password, database);
}

}  // namespace testing_support
