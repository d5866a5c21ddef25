#include "tests/support/proxy.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <utility>

namespace testing_support {
namespace {

FileDescriptor connectedTo(std::uint16_t port) {
  FileDescriptor result(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const int failed =
      ::connect(result.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
  return failed == 0 ? std::move(result) : FileDescriptor();
}

// Empty when the peer has left.
std::string received(int socket) {
  std::array<char, 4096> buffer{};
  const ssize_t count = ::recv(socket, buffer.data(), buffer.size(), 0);
  return {buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0};
}

bool send(int socket, const std::string& bytes) {
  const ssize_t count = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
  return count == static_cast<ssize_t>(bytes.size());
}

}  // namespace

Proxy::Proxy(std::uint16_t serverPort, Change change)
    : serverPort_(serverPort), change_(std::move(change)), thread_([this] { serve(); }) {}

Proxy::~Proxy() { heard(); }

const std::string& Proxy::heard() {
  ::shutdown(socket(), SHUT_RDWR);  // wakes the thread
  if (thread_.joinable()) thread_.join();
  return heard_;
}

void Proxy::serve() {
  for (;;) {
    const FileDescriptor visitor(::accept4(socket(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!visitor.isOpen()) return;
    const FileDescriptor server = connectedTo(serverPort_);
    if (server.isOpen()) pass(visitor.number(), server.number());
  }
}

void Proxy::pass(int visitor, int server) {
  std::array<pollfd, 2> ends{
      pollfd{visitor, POLLIN, 0},
      pollfd{server,  POLLIN, 0}
  };
  bool isFirst = true;
  while (::poll(ends.data(), ends.size(), -1) > 0) {
    const bool isServers = ends[1].revents != 0;
    std::string said = received(isServers ? server : visitor);
    if (said.empty()) return;
    if (!isServers) heard_ += said;
    if (isServers && std::exchange(isFirst, false)) change_(said);
    if (!send(isServers ? visitor : server, said)) return;
  }
}

}  // namespace testing_support
