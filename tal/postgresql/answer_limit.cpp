#include "tal/postgresql/answer_limit.h"

#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include "tal/failure.h"

namespace tal::postgresql {
namespace {

// In the life of the connection; 0 when the socket does not tell.
std::uint64_t receivedBytes(const PGconn* connection) {
  tcp_info information{};
  socklen_t size = sizeof information;
  const int failed = ::getsockopt(PQsocket(connection), IPPROTO_TCP, TCP_INFO, &information, &size);
  return failed == 0 ? information.tcpi_bytes_received : 0;
}

}  // namespace

AnswerLimit::AnswerLimit(const PGconn* connection)
    : connection_(connection), before_(receivedBytes(connection)) {}

void AnswerLimit::check() const {
  if (receivedBytes(connection_) > before_ + kAnswerLimit) throw Failure(Status::kServerError);
}

}  // namespace tal::postgresql
