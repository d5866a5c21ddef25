#include "tests/postgresql/private_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <libpq-fe.h>
#include <netinet/in.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "tests/postgresql/server_process.h"
#include "tests/support/file_descriptor.h"
#include "tests/support/process.h"

namespace testing_support {
namespace {

constexpr std::chrono::milliseconds kPause{10};

// Short, for the path of a socket holds 107 bytes; everybody may enter, the server may write.
std::filesystem::path makeFolder() {
  char path[] = "/tmp/zelk-pg-XXXXXX";
  if (::mkdtemp(path) == nullptr) throw std::runtime_error("no temporary folder");
  if (::geteuid() == 0) ::chmod(path, 01777);
  return path;
}

std::uint16_t freePort() {
  const FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  if (::bind(socket.number(), generic, size) != 0 ||
      ::getsockname(socket.number(), generic, &size) != 0) {
    throw std::runtime_error("no free port");
  }
  return ntohs(address.sin_port);
}

}  // namespace

PrivateServer::PrivateServer() : folder_(makeFolder()), port_(freePort()) {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  guardian_ = ::fork();
  if (guardian_ == 0) {
    ::close(ends[1]);
    guardServer({folder_, port_, kPassword}, ends[0]);
  }
  ::close(ends[0]);
  lifeLine_ = ends[1];
  waitUntilReady();
}

PrivateServer::~PrivateServer() {
  ::close(lifeLine_);
  ::waitpid(guardian_, nullptr, 0);
}

std::string PrivateServer::connectionString(const std::string& user, const std::string& password,
                                            const std::string& database) const {
  return "host=127.0.0.1 port=" + std::to_string(port_) + " user=" + user +
         " password=" + password + " dbname=" + database;
}

std::string PrivateServer::log() const {
  std::ostringstream text;
  text << std::ifstream(folder_ / "server.log").rdbuf();
  return text.str();
}

pid_t PrivateServer::process() const {
  pid_t server = 0;
  std::ifstream(folder_ / "data/postmaster.pid") >> server;
  if (server <= 0) throw std::runtime_error("the server does not run");
  return server;
}

void PrivateServer::restart() {
  const pid_t before = process();
  if (::write(lifeLine_, "r", 1) != 1) throw std::runtime_error("the guardian is gone");
  while (::kill(before, 0) == 0) std::this_thread::sleep_for(kPause);
  waitUntilReady();
}

void PrivateServer::stop() {
  ::kill(process(), SIGQUIT);
  while (std::filesystem::exists(folder_ / "data/postmaster.pid")) {
    std::this_thread::sleep_for(kPause);
  }
}

void PrivateServer::waitUntilReady() {
  const auto end = std::chrono::steady_clock::now() + kDeadline;
  const std::string target = connectionString("postgres", kPassword, "postgres");
  while (PQping(target.c_str()) != PQPING_OK) {
    if (std::chrono::steady_clock::now() > end || ::waitpid(guardian_, nullptr, WNOHANG) != 0) {
      ::close(lifeLine_);
      throw std::runtime_error("the private server did not start");
    }
    std::this_thread::sleep_for(kPause);
  }
}

}  // namespace testing_support
