#include "tests/support/loopback.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace testing_support {
namespace {

// Below the ports that Linux chooses when a program requests any port.
constexpr int kFirstPort = 20000;
constexpr int kPorts = 10000;

void require(bool done) {
  if (!done) throw std::system_error(errno, std::generic_category());
}

FileDescriptor tcpSocket() {
  return FileDescriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
}

bool bindTo(const FileDescriptor& socket, const char* host, std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  require(::inet_pton(AF_INET, host, &address.sin_addr) == 1);
  return ::bind(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

FileDescriptor boundSocket(const char* host, std::uint16_t port) {
  FileDescriptor result = tcpSocket();
  require(bindTo(result, host, port));
  return result;
}

std::uint16_t portOf(const FileDescriptor& socket) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  require(::getsockname(socket.number(), reinterpret_cast<sockaddr*>(&address), &size) == 0);
  return ntohs(address.sin_port);
}

// Holds a name that only one socket of the machine can have at a time. The name needs no file and
// ends with the process. Not open if another socket holds it.
FileDescriptor claim(std::uint16_t port) {
  FileDescriptor result(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string name = "zelk-test-port-" + std::to_string(port);
  name.copy(&address.sun_path[1], name.size());  // a zero before it: no file
  const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
  const bool isMine =
      ::bind(result.number(), reinterpret_cast<const sockaddr*>(&address), size) == 0;
  return isMine ? std::move(result) : FileDescriptor();
}

bool isFree(std::uint16_t port) { return bindTo(tcpSocket(), "127.0.0.1", port); }

}  // namespace

ReservedPort::ReservedPort() {
  for (int i = 0; i < kPorts; ++i) {
    // Programs that run side by side begin at different places.
    number_ = static_cast<std::uint16_t>(kFirstPort + (::getpid() * 7 + i) % kPorts);
    claim_ = claim(number_);
    if (claim_.isOpen() && isFree(number_)) return;
  }
  throw std::runtime_error("no free port");
}

SilentListener::SilentListener(const char* host, std::uint16_t port)
    : listener_(boundSocket(host, port)), port_(portOf(listener_)) {
  require(::listen(listener_.number(), 8) == 0);
}

ForeignListener::ForeignListener(std::string sentence)
    : thread_([this, sentence = std::move(sentence)] { serve(sentence); }) {}

void ForeignListener::serve(const std::string& sentence) {
  const FileDescriptor visitor(::accept4(socket(), nullptr, nullptr, SOCK_CLOEXEC));
  if (!visitor.isOpen()) return;
  ::send(visitor.number(), sentence.data(), sentence.size(), MSG_NOSIGNAL);
  ::shutdown(visitor.number(), SHUT_WR);

  std::array<char, 512> buffer{};
  for (ssize_t size = 0; (size = ::recv(visitor.number(), buffer.data(), buffer.size(), 0)) > 0;) {
    heard_.append(buffer.data(), static_cast<std::size_t>(size));
  }
}

const std::string& ForeignListener::heard() {
  if (thread_.joinable()) thread_.join();
  return heard_;
}

ForeignListener::~ForeignListener() {
  // Wakes the thread if nobody has visited.
  ::shutdown(socket(), SHUT_RDWR);
  if (thread_.joinable()) thread_.join();
}

}  // namespace testing_support
