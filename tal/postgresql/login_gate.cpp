#include "tal/postgresql/login_gate.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "tal/sql/deadline.h"
#include "tal/status.h"

namespace tal::postgresql {
namespace {

// Authentication request, error, notice, setting, key, ready and version: all messages of a login.
constexpr std::string_view kLoginMessages = "RENSKZv";
constexpr std::size_t kHeader = 5;              // type and length
constexpr std::size_t kLargestMessage = 65536;  // fits into the socket pair
constexpr std::size_t kMostReceived = 1048576;

std::uint32_t bigEndian(std::string_view bytes) {
  std::uint32_t value = 0;
  std::memcpy(&value, bytes.data(), sizeof value);
  return ntohl(value);
}

// Whether the way to log in does not reveal the password: a login without a password, and the steps
// of SCRAM.
bool isSafe(std::uint32_t request) {
  constexpr std::array<std::uint32_t, 4> kSafe = {0, 10, 11, 12};
  return std::ranges::find(kSafe, request) != kSafe.end();
}

void check(std::string_view message) {
  if (message.front() != 'R') return;
  if (message.size() < kHeader + 4) throw Failure(Status::kOtherProtocol);
  if (!isSafe(bigEndian(message.substr(kHeader)))) throw Failure(Status::kUnsafeLogin);
}

void makePair(int* ends) {
  constexpr int kKind = SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC;
  if (::socketpair(AF_UNIX, kKind, 0, ends) != 0) throw Failure(Status::kInternalError);
}

}  // namespace

Descriptor::~Descriptor() {
  if (number_ >= 0) ::close(number_);
}

LoginGate::LoginGate(PGconn* connection)
    : connection_(connection),
      server_(::fcntl(PQsocket(connection), F_DUPFD_CLOEXEC, 0)),
      ends_{-1, -1},
      library_((makePair(ends_), ends_[1])) {
  const Descriptor theirs(ends_[0]);
  if (server_.number() < 0 || ::dup3(theirs.number(), PQsocket(connection), O_CLOEXEC) < 0) {
    throw Failure(Status::kInternalError);
  }
}

void LoginGate::leave() { ::dup3(server_.number(), PQsocket(connection_), O_CLOEXEC); }

void LoginGate::exchange(const sql::Deadline& deadline) {
  letOut(deadline);
  letIn(message(deadline));
}

void LoginGate::letOut(const sql::Deadline& deadline) {
  std::array<char, 4096> buffer{};
  for (;;) {
    const ssize_t count = ::read(library_.number(), buffer.data(), buffer.size());
    if (count <= 0) return;
    for (ssize_t sent = 0; sent < count;) {
      sql::waitForSocket(server_.number(), POLLOUT, deadline);
      const ssize_t part = ::send(server_.number(), buffer.data() + sent,
                                  static_cast<std::size_t>(count - sent), MSG_NOSIGNAL);
      if (part < 0 && errno != EAGAIN) return;  // the next read gives the reason
      sent += std::max<ssize_t>(part, 0);
    }
  }
}

// Fewer bytes when the server has closed the connection.
std::string LoginGate::receive(std::size_t size, const sql::Deadline& deadline) const {
  std::string bytes(size, '\0');
  std::size_t have = 0;
  while (have < size) {
    sql::waitForSocket(server_.number(), POLLIN, deadline);
    const ssize_t count = ::read(server_.number(), bytes.data() + have, size - have);
    if (count == 0 || (count < 0 && errno != EAGAIN)) break;
    have += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
  }
  bytes.resize(have);
  return bytes;
}

// Empty when the server has closed the connection.
std::string LoginGate::message(const sql::Deadline& deadline) {
  std::string message = receive(kHeader, deadline);
  if (message.empty()) return message;
  if (kLoginMessages.find(message.front()) == std::string_view::npos) {
    throw Failure(Status::kOtherProtocol);
  }
  if (message.size() < kHeader) return {};

  const std::uint32_t length = bigEndian(std::string_view(message).substr(1));
  if (length < 4 || length > kLargestMessage) throw Failure(Status::kOtherProtocol);
  received_ += length;
  if (received_ > kMostReceived) throw Failure(Status::kAnswerTooLarge);
  message += receive(length - 4, deadline);
  return message.size() == length + 1 ? message : std::string{};
}

void LoginGate::letIn(const std::string& message) {
  if (message.empty()) {
    ::shutdown(library_.number(), SHUT_WR);
    return;
  }
  check(message);
  if (::send(library_.number(), message.data(), message.size(), MSG_NOSIGNAL) !=
      static_cast<ssize_t>(message.size())) {
    throw Failure(Status::kInternalError);
  }
}

}  // namespace tal::postgresql
