#include "tests/mariadb/loopback.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <system_error>
#include <utility>

namespace mariadb_testing {
namespace {

using testing_support::FileDescriptor;

void require(bool done) {
  if (!done) throw std::system_error(errno, std::generic_category());
}

FileDescriptor boundSocket(const char* host = "127.0.0.1", std::uint16_t port = 0) {
  FileDescriptor result(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  require(::inet_pton(AF_INET, host, &address.sin_addr) == 1);
  require(::bind(result.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) ==
          0);
  return result;
}

std::uint16_t portOf(const FileDescriptor& socket) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  require(::getsockname(socket.number(), reinterpret_cast<sockaddr*>(&address), &size) == 0);
  return ntohs(address.sin_port);
}

}  // namespace

std::uint16_t freePort() { return portOf(boundSocket()); }

SilentListener::SilentListener(const char* host, std::uint16_t port)
    : listener_(boundSocket(host, port)), port_(portOf(listener_)) {
  require(::listen(listener_.number(), 8) == 0);
}

ForeignListener::ForeignListener(std::string sentence)
    : thread_([this, sentence = std::move(sentence)] { serve(sentence); }) {}

void ForeignListener::serve(const std::string& sentence) {
  const FileDescriptor visitor(::accept4(listener_.number(), nullptr, nullptr, SOCK_CLOEXEC));
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
  ::shutdown(listener_.number(), SHUT_RDWR);
  if (thread_.joinable()) thread_.join();
}

}  // namespace mariadb_testing
