#include "tests/support/guarded_server.h"

#include <poll.h>
#include <pwd.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>

#include "tests/support/wait_until.h"

namespace testing_support {
namespace {

// Creates the data, runs the server on them and prints its process id. For each line on its
// standard input it stops the server and runs it again; at the end of the input it stops it and
// removes the folder. An interrupt from the terminal must not end it before that. A frozen server
// gets signals only after it continues.
constexpr const char* kGuardian = R"(
  trap '' INT TERM HUP
  folder=$1 signal=$2 prepare=$3
  shift 3
  (eval "$prepare") >"$folder/prepare.log" 2>&1 </dev/null
  again=yes
  while [ "$again" ]; do
    setpriv --pdeathsig "$signal" "$@" >>"$folder/server.log" 2>&1 </dev/null &
    echo "server $!"
    read -r again || again=
    kill "-$signal" $! && kill -CONT $!
    wait
  done
  rm -rf "$folder"
)";

std::vector<std::string> asOrdinaryUser(const char* name, const std::filesystem::path& folder) {
  if (::geteuid() != 0) return {};
  const passwd* user = ::getpwnam(name);
  if (user == nullptr) user = ::getpwnam("nobody");
  if (user == nullptr || ::chown(folder.c_str(), user->pw_uid, user->pw_gid) != 0) {
    throw std::runtime_error("no ordinary user to run a server");
  }
  return {"--reuid=" + std::to_string(user->pw_uid), "--regid=" + std::to_string(user->pw_gid),
          "--clear-groups"};
}

std::string textOf(const std::filesystem::path& file) {
  return std::filesystem::exists(file) ? readFile(file) : "";
}

}  // namespace

GuardedServer::GuardedServer(const Planner& planner)
    : plan_(planner(folder_.path(), port_.number())) {
  startGuardian();
  waitForProcess();
  waitUntilReady();
}

GuardedServer::~GuardedServer() {
  guardian_->closeInput();
  guardian_->wait();
}

void GuardedServer::startGuardian() {
  std::vector<std::string> arguments = asOrdinaryUser(plan_.user, folder());
  arguments.insert(arguments.end(), {"/bin/sh", "-c", kGuardian, "guardian", folder(),
                                     ::sigabbrev_np(plan_.stopSignal), plan_.prepare});
  arguments.insert(arguments.end(), plan_.command.begin(), plan_.command.end());
  guardian_ =
      std::make_unique<Process>(Command{.program = "/usr/bin/setpriv",
                                        .arguments = arguments,
                                        .environment = {{"PATH", "/usr/sbin:/usr/bin:/sbin:/bin"}},
                                        .folder = "/",
                                        .input = Input::pipe()});
}

void GuardedServer::waitForProcess() {
  const std::string before = "server ";
  if (!guardian_->waitForOutput("\n", ++starts_)) throw std::runtime_error("no guardian");
  process_ =
      std::stoi(guardian_->output().substr(guardian_->output().rfind(before) + before.size()));
  handle_ = FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, process_, 0)));
}

void GuardedServer::waitUntilReady() {
  const bool ready = waitUntil([this] {
    requireRunning();
    return plan_.answers();
  });
  if (!ready) throw std::runtime_error("the server does not start:\n" + log());
}

bool GuardedServer::hasEnded() const {
  pollfd end{handle_.number(), POLLIN, 0};
  return !handle_.isOpen() || ::poll(&end, 1, 0) > 0;
}

void GuardedServer::requireRunning() const {
  if (hasEnded()) throw std::runtime_error("the server has ended:\n" + log());
}

std::string GuardedServer::log() const {
  return textOf(folder_ / "prepare.log") + textOf(folder_ / "server.log");
}

void GuardedServer::restart() {
  guardian_->write("again\n");
  waitForProcess();
  waitUntilReady();
}

void GuardedServer::stop() {
  ::kill(process_, plan_.stopSignal);
  if (!waitUntil([this] { return hasEnded(); })) throw std::runtime_error("the server runs on");
}

}  // namespace testing_support
