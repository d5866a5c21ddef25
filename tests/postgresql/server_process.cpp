#include "tests/postgresql/server_process.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <fstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace testing_support {
namespace {

namespace fs = std::filesystem;

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

// The server refuses to run as root.
const passwd* ordinaryUser() {
  if (::geteuid() != 0) return nullptr;
  const passwd* const postgres = ::getpwnam("postgres");
  return postgres != nullptr ? postgres : ::getpwnam("nobody");
}

[[noreturn]] void execute(const std::vector<std::string>& command, const fs::path& log,
                          const passwd* user) {
  const int output = ::open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  ::dup2(output, STDOUT_FILENO);
  ::dup2(output, STDERR_FILENO);
  if (user != nullptr && (::setgroups(0, nullptr) != 0 || ::setgid(user->pw_gid) != 0 ||
                          ::setuid(user->pw_uid) != 0)) {
    ::_exit(126);
  }
  ::prctl(PR_SET_PDEATHSIG, SIGQUIT);
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  ::execv(arguments.front(), arguments.data());
  ::_exit(127);
}

pid_t startProgram(const std::vector<std::string>& command, const fs::path& log) {
  const passwd* const user = ordinaryUser();
  const pid_t process = ::fork();
  if (process == 0) execute(command, log, user);
  return process;
}

bool succeeds(const std::vector<std::string>& command, const fs::path& log) {
  int status = -1;
  return ::waitpid(startProgram(command, log), &status, 0) > 0 && status == 0;
}

bool makeCluster(const ServerSettings& settings, const fs::path& programs) {
  const fs::path passwordFile = settings.folder / "password";
  std::ofstream(passwordFile) << settings.password << '\n';
  const bool made = succeeds(
      {programs / "initdb", "-D", settings.folder / "data", "-U", "postgres", "-A", "scram-sha-256",
       "--pwfile=" + passwordFile.string(), "--locale=C", "--encoding=UTF8", "--no-sync"},
      settings.folder / "initdb.log");
  std::ofstream(settings.folder / "data/postgresql.conf", std::ios::app)
      << "listen_addresses = '127.0.0.1'\n"
      << "port = " << settings.port << '\n'
      << "unix_socket_directories = '" << settings.folder.string()
      << "'\n"
      // In the cluster's folder: with it goes what a killed server could not remove.
      << "dynamic_shared_memory_type = mmap\n"
      << "max_connections = 40\n"
      << "max_prepared_transactions = 10\n"
      << "fsync = off\n"
      << "autovacuum = off\n"
      << "autovacuum_naptime = 1\n"
      << "log_line_prefix = '%a|'\n";
  return made;
}

void stopServer(pid_t server) {
  using namespace std::chrono_literals;
  ::kill(server, SIGQUIT);
  for (auto waited = 0ms; waited < 10s; waited += 10ms) {
    if (::waitpid(server, nullptr, WNOHANG) != 0) return;
    std::this_thread::sleep_for(10ms);
  }
  ::kill(server, SIGKILL);
  ::waitpid(server, nullptr, 0);
}

void runServer(const ServerSettings& settings, const fs::path& programs, int lifeLine) {
  const auto start = [&] {
    return startProgram({programs / "postgres", "-D", settings.folder / "data"},
                        settings.folder / "server.log");
  };
  pid_t server = start();
  for (char byte = 0; ::read(lifeLine, &byte, 1) > 0; server = start()) stopServer(server);
  stopServer(server);
}

}  // namespace

void guardServer(const ServerSettings& settings, int lifeLine) {
  // A session of its own: the terminal's interrupt must not reach the guardian before its work.
  ::setsid();
  ::dup2(lifeLine, 3);
  // Other pipes of the tests must not be kept open from here.
  ::close_range(4, ~0U, 0);

  const fs::path programs = newestPrograms();
  if (makeCluster(settings, programs)) runServer(settings, programs, 3);
  std::error_code error;
  fs::remove_all(settings.folder, error);
  ::_exit(0);
}

}  // namespace testing_support
