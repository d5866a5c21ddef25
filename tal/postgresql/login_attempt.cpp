#include "tal/postgresql/login_attempt.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/types.h>

#include <cerrno>
#include <new>
#include <string_view>

#include "tal/failure.h"
#include "tal/postgresql/answer_limit.h"
#include "tal/postgresql/environment.h"
#include "tal/postgresql/errors.h"
#include "tal/sql/wait.h"

namespace tal::postgresql {
namespace {

void dropNotice(void* /*argument*/, const char* /*text*/) {}

// How far a login had come when its last step began.
struct Progress {
  ConnStatusType phase;
  bool leftInTls;  // the server closed the connection while encryption was being agreed on
};

// Looks at the socket in that one phase only: while it is still being connected, reading from it
// would take away the error that the client library has to see.
Progress progressOf(const PGconn* connection) {
  const ConnStatusType phase = PQstatus(connection);
  if (phase != CONNECTION_SSL_STARTUP) return {phase, false};

  char byte = 0;
  const ssize_t count = ::recv(PQsocket(connection), &byte, 1, MSG_PEEK | MSG_DONTWAIT);
  return {phase, count == 0 || (count < 0 && errno == ECONNRESET)};
}

// Failures that the server did not explain carry nothing but a text, so the progress must tell them
// apart.
Status reasonOf(const PGconn* connection, const Progress& progress, bool requireTls) {
  const std::string_view sqlState = sqlStateIn(PQerrorMessage(connection));
  if (!sqlState.empty()) return statusOf(sqlState);
  if (PQconnectionNeedsPassword(connection) == 1) return Status::kPasswordMissing;
  if (progress.phase == CONNECTION_STARTED) return Status::kCannotReach;
  const bool inTls = progress.phase == CONNECTION_SSL_STARTUP && requireTls;
  return inTls && !progress.leftInTls ? Status::kTlsFailed : Status::kConnectionLost;
}

// Any step may be the one that sends the session's settings.
PostgresPollingStatusType poll(PGconn* connection) {
  const WithoutSessionVariables guard;
  return PQconnectPoll(connection);
}

ConnectionHandle startConnecting(const Target& target) {
  ConnectionHandle connection(PQconnectStart(connectionString(target).c_str()));
  if (!connection) throw std::bad_alloc();
  PQsetErrorVerbosity(connection.get(), PQERRORS_SQLSTATE);
  PQsetNoticeProcessor(connection.get(), &dropNotice, nullptr);
  if (PQstatus(connection.get()) == CONNECTION_BAD) throw Failure(Status::kCannotReach);
  return connection;
}

}  // namespace

ConnectionHandle connectTo(const Target& target, sql::SocketCutter& cutter,
                           const sql::Deadline& deadline) {
  ConnectionHandle connection = startConnecting(target);
  const AnswerLimit limit(connection.get());
  PostgresPollingStatusType next = PGRES_POLLING_WRITING;
  while (next != PGRES_POLLING_OK) {
    const short event = next == PGRES_POLLING_READING ? POLLIN : POLLOUT;
    cutter.watch(PQsocket(connection.get()));
    sql::waitForSocket(PQsocket(connection.get()), event, deadline);
    const Progress progress = progressOf(connection.get());
    next = poll(connection.get());
    limit.check();
    if (next == PGRES_POLLING_FAILED) {
      throw Failure(reasonOf(connection.get(), progress, target.requireTls));
    }
  }
  return connection;
}

}  // namespace tal::postgresql
