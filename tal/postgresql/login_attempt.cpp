#include "tal/postgresql/login_attempt.h"

#include <libintl.h>
#include <poll.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/types.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>
#include <utility>

#include "tal/postgresql/answer_limit.h"
#include "tal/postgresql/errors.h"
#include "tal/postgresql/login_gate.h"
#include "tal/sql/deadline.h"
#include "tal/sql/message.h"
#include "tal/status.h"
#include "tal/text.h"

namespace tal::postgresql {
namespace {

constexpr char kNothing = '\0';
constexpr char kAgreed = 'S';
constexpr char kDeclined = 'N';
constexpr char kError = 'E';

void dropNotice(void* /*argument*/, const char* /*text*/) {}

// The progress of a login when its last step began.
struct Progress {
  ConnStatusType phase;
  char next;     // the next byte from the server, kNothing before the socket is connected
  bool hasMore;  // a second byte is there too
  bool hasLeft;  // the server has closed the connection
};

// While the socket is connecting, a read would remove the error that the client library must see.
Progress progressOf(const PGconn* connection) {
  const ConnStatusType phase = PQstatus(connection);
  if (phase == CONNECTION_STARTED || phase == CONNECTION_MADE)
    return {phase, kNothing, false, false};

  char bytes[] = {kNothing, kNothing};
  const ssize_t count = ::recv(PQsocket(connection), bytes, sizeof bytes, MSG_PEEK | MSG_DONTWAIT);
  return {phase, bytes[0], count == 2, count == 0 || (count < 0 && errno == ECONNRESET)};
}

bool isAskedForTls(const Progress& progress) { return progress.phase == CONNECTION_SSL_STARTUP; }

// The first byte of the server says whether it encrypts, and then the server waits. A server
// without a free connection sends an error.
void checkAnswerToTls(const Progress& progress) {
  constexpr char kKnown[] = {kNothing, kAgreed, kDeclined, kError};
  const bool isSentence = progress.next == kAgreed && progress.hasMore;
  if (isSentence || std::ranges::find(kKnown, progress.next) == std::end(kKnown)) {
    throw Failure(Status::kOtherProtocol);
  }
}

// The text of the client library, in the user's language: host, port and the reason of the system.
std::string explanationIn(const PGconn* connection) {
  const std::string_view all = PQerrorMessage(connection);
  std::string line(all.substr(0, all.find('\n')));
  std::ranges::replace_if(
      line, [](char byte) { return isControl(byte); }, '?');
  return line;
}

// Failures that the server did not explain have only a text, so they are distinguished by the
// progress.
[[noreturn]] void failLogin(const PGconn* connection, const Progress& progress,
                            const Target& target) {
  const std::string_view sqlState = sqlStateIn(PQerrorMessage(connection));
  if (!sqlState.empty()) throw Failure(statusOf(sqlState));
  if (PQconnectionNeedsPassword(connection) == 1) throw Failure(Status::kPasswordMissing);
  if (progress.phase == CONNECTION_STARTED) {
    throw sql::ExplainedFailure(Status::kCannotReach, explanationIn(connection));
  }
  if (progress.hasLeft) throw Failure(Status::kConnectionLost);
  if (isAskedForTls(progress)) {
    throw sql::ExplainedFailure(Status::kTlsFailed, explanationIn(connection));
  }
  throw Failure(target.bindsPassword ? Status::kUnsafeLogin : Status::kConnectionLost);
}

// The library keeps the password for another login, which never happens here.
void forgetPassword(PGconn* connection) {
  char* const password = PQpass(connection);
  if (password != nullptr) ::explicit_bzero(password, ::strlen(password));
}

// The program sets no character set of the locale, so the library would write ASCII.
void useUtf8ForTexts() {
  const std::string domain = "libpq5-" + std::to_string(PQlibVersion() / 10000);
  ::bind_textdomain_codeset(domain.c_str(), "UTF-8");
}

ConnectionHandle startConnecting(const Target& target) {
  useUtf8ForTexts();
  ConnectionHandle connection = startConnection(target);
  PQsetErrorVerbosity(connection.get(), PQERRORS_SQLSTATE);
  PQsetNoticeProcessor(connection.get(), &dropNotice, nullptr);
  if (PQstatus(connection.get()) == CONNECTION_BAD) {
    throw sql::ExplainedFailure(Status::kCannotReach, explanationIn(connection.get()));
  }
  return connection;
}

// The steps of one login.
class Attempt {
 public:
  Attempt(const Target& target, bool isGated, sql::SocketCutter& cutter,
          const sql::Deadline& deadline)
      : target_(target),
        isGated_(isGated),
        cutter_(cutter),
        deadline_(deadline),
        connection_(startConnecting(target)),
        limit_(connection_.get()) {}

  std::optional<ConnectionHandle> run() {
    while (next_ != PGRES_POLLING_OK) {
      await();
      const Progress progress = progressOf(connection_.get());
      if (isAnswerToTls(progress)) {
        checkAnswerToTls(progress);
        if (progress.next == kDeclined) return std::nullopt;
      }
      next_ = PQconnectPoll(connection_.get());
      if (next_ == PGRES_POLLING_FAILED) failLogin(connection_.get(), progress, target_);
    }
    if (gate_) gate_->leave();
    forgetPassword(connection_.get());
    return std::move(connection_);
  }

 private:
  // True once: the handshake follows in the same phase.
  bool isAnswerToTls(const Progress& progress) {
    if (!isAskedForTls(progress)) return false;
    return !std::exchange(isTlsAnswered_, true);
  }

  void await() {
    const bool isAnswerDue = PQstatus(connection_.get()) == CONNECTION_AWAITING_RESPONSE;
    if (isGated_ && isAnswerDue && !gate_) gate_.emplace(connection_.get());
    if (gate_) {
      if (next_ == PGRES_POLLING_READING) gate_->exchange(deadline_);
      return;
    }
    cutter_.watch(PQsocket(connection_.get()));
    const short event = next_ == PGRES_POLLING_READING ? POLLIN : POLLOUT;
    sql::waitForSocket(PQsocket(connection_.get()), event, deadline_);
    limit_.check();
  }

  const Target& target_;
  bool isGated_;
  sql::SocketCutter& cutter_;
  const sql::Deadline& deadline_;
  ConnectionHandle connection_;
  AnswerLimit limit_;
  std::optional<LoginGate> gate_;
  bool isTlsAnswered_ = false;
  PostgresPollingStatusType next_ = PGRES_POLLING_WRITING;
};

}  // namespace

std::optional<ConnectionHandle> tryLogin(const Target& target, Asking asking,
                                         sql::SocketCutter& cutter, const sql::Deadline& deadline) {
  const bool isGated = target.encryption == Encryption::kNone && asking == Asking::kSafely;
  return Attempt(target, isGated, cutter, deadline).run();
}

}  // namespace tal::postgresql
