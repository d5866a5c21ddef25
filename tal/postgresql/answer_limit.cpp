#include "tal/postgresql/answer_limit.h"

#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <optional>

#include "tal/sql/limits.h"
#include "tal/status.h"

namespace tal::postgresql {
namespace {

// The bytes that the connection has received in all; nothing for a socket that is not TCP.
std::optional<std::uint64_t> receivedBytes(const PGconn* connection) {
  tcp_info information{};
  socklen_t size = sizeof information;
  const int failed = ::getsockopt(PQsocket(connection), IPPROTO_TCP, TCP_INFO, &information, &size);
  if (failed != 0) return std::nullopt;
  return information.tcpi_bytes_received;
}

std::uint64_t waitingBytes(const PGconn* connection) {
  int count = 0;
  ::ioctl(PQsocket(connection), FIONREAD, &count);
  return static_cast<std::uint64_t>(std::max(count, 0));
}

}  // namespace

AnswerLimit::AnswerLimit(const PGconn* connection)
    : connection_(connection),
      isTcp_(receivedBytes(connection).has_value()),
      before_(receivedBytes(connection).value_or(0)) {}

void AnswerLimit::check() {
  if (isTcp_) {
    seen_ = receivedBytes(connection_).value_or(before_) - before_;
  } else {
    seen_ += waitingBytes(connection_);
  }
  if (seen_ > sql::kMostBytes) throw Failure(Status::kAnswerTooLarge);
}

}  // namespace tal::postgresql
