#include "tal/mariadb/login_attempt.h"

#include <mysqld_error.h>
#include <poll.h>
#include <string.h>
#include <sys/socket.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <string>
#include <string_view>
#include <system_error>

#include "tal/mariadb/errors.h"
#include "tal/mariadb/greeting.h"
#include "tal/sql/deadline.h"
#include "tal/sql/message.h"
#include "tal/status.h"

namespace tal::mariadb {
namespace {

// The size of the stack on which the client library suspends a login, four times its default.
constexpr std::size_t kLoginStack = 256UL * 1024;

// Several times the longest row of any statement. The default of the library is a gigabyte.
constexpr std::size_t kLongestPacket = 64UL * 1024;

void setOption(MYSQL* session, mysql_option option, const void* value) {
  if (mysql_options(session, option, value) != 0) throw Failure(Status::kInternalError);
}

void setLimits(MYSQL* session, const sql::Deadline& deadline) {
  const auto seconds = [](std::chrono::milliseconds time) {
    const auto whole = std::chrono::ceil<std::chrono::seconds>(time).count();
    return static_cast<unsigned int>(std::max<std::chrono::seconds::rep>(whole, 1));
  };
  const unsigned int connecting = seconds(deadline.remaining());
  const unsigned int waiting = seconds(sql::kStatementLimit);
  setOption(session, MYSQL_OPT_NONBLOCK, &kLoginStack);
  setOption(session, MYSQL_OPT_CONNECT_TIMEOUT, &connecting);
  setOption(session, MYSQL_OPT_READ_TIMEOUT, &waiting);
  setOption(session, MYSQL_OPT_WRITE_TIMEOUT, &waiting);
  setOption(session, MYSQL_OPT_MAX_ALLOWED_PACKET, &kLongestPacket);
}

void setEncryption(MYSQL* session, const Encryption& encryption) {
  const my_bool wanted = encryption.wanted ? 1 : 0;
  const my_bool verified = encryption.verified ? 1 : 0;
  setOption(session, MYSQL_OPT_SSL_ENFORCE, &wanted);
  setOption(session, MYSQL_OPT_SSL_VERIFY_SERVER_CERT, &verified);
  if (!encryption.wanted) return;
  for (const auto& [option, value] : encryption.settings) {
    setOption(session, option, value.c_str());
  }
}

// The ways to log in that the server may ask for. The first two never reveal the password. The
// others can, so they are allowed only when the server's certificate is verified. None of them asks
// the user on the terminal.
void restrictLogin(MYSQL* session, const Encryption& encryption) {
  setOption(session, MYSQL_PLUGIN_DIR, TAL_MARIADB_PLUGIN_FOLDER);
  setOption(session, MARIADB_OPT_RESTRICTED_AUTH,
            encryption.verified ? "mysql_native_password,client_ed25519,caching_sha2_password,"
                                  "mysql_clear_password"
                                : "mysql_native_password,client_ed25519");
}

SessionHandle prepare(const Target& target, const sql::Deadline& deadline) {
  SessionHandle session(mysql_init(nullptr));
  if (!session) throw Failure(Status::kOutOfMemory);

  const unsigned int protocol =
      target.location.isSocket() ? MYSQL_PROTOCOL_SOCKET : MYSQL_PROTOCOL_TCP;
  const my_bool off = 0;
  const unsigned int noLocalFiles = 0;  // the server could request any file of this machine
  setLimits(session.get(), deadline);
  setOption(session.get(), MYSQL_OPT_PROTOCOL, &protocol);
  setOption(session.get(), MYSQL_OPT_RECONNECT, &off);
  setOption(session.get(), MYSQL_OPT_LOCAL_INFILE, &noLocalFiles);
  setOption(session.get(), MYSQL_SET_CHARSET_NAME, "utf8mb4");
  if (mysql_optionsv(session.get(), MYSQL_OPT_CONNECT_ATTR_ADD, "program_name", "zelk") != 0) {
    throw Failure(Status::kInternalError);
  }
  restrictLogin(session.get(), target.encryption);
  setEncryption(session.get(), target.encryption);
  return session;
}

std::string placeOf(const Location& location) {
  if (location.isSocket()) return location.socketPath;
  return location.address.host + ":" + std::to_string(location.address.port);
}

[[noreturn]] void failAt(const Target& target, Status status, const std::string& reason) {
  throw sql::ExplainedFailure(status, placeOf(target.location) + ": " + reason);
}

bool isConnected(int socket) {
  sockaddr_storage peer{};
  socklen_t size = sizeof peer;
  return ::getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &size) == 0;
}

// A server of another kind may be one that waits for its client to begin.
Greeting greetingFor(const Target& target, int socket, const sql::Deadline& deadline) {
  try {
    return awaitGreeting(socket, deadline);
  } catch (const Failure& failure) {
    if (failure.status() != Status::kNoAnswer) throw;
    failAt(target, Status::kNoAnswer, sql::message("NO_GREETING"));
  }
}

void checkGreeting(const Target& target, int socket, const sql::Deadline& deadline) {
  const Greeting greeting = greetingFor(target, socket, deadline);
  if (greeting == Greeting::kForeign) {
    failAt(target, Status::kOtherProtocol, sql::message("OTHER_PROTOCOL"));
  }
  if (greeting == Greeting::kPlain && target.encryption.wanted) {
    failAt(target, Status::kTlsFailed, sql::message("NO_ENCRYPTION"));
  }
}

// Waits for the events that a suspended login needs, and returns those that came.
int awaitEvents(MYSQL* session, int wanted, const sql::Deadline& deadline) {
  const bool reads = (wanted & MYSQL_WAIT_READ) != 0;
  const bool writes = (wanted & MYSQL_WAIT_WRITE) != 0;
  const auto events = static_cast<short>((reads ? POLLIN : 0) | (writes ? POLLOUT : 0));
  const int ready = sql::waitForSocket(mysql_get_socket(session), events, deadline);
  return ((ready & POLLIN) != 0 ? MYSQL_WAIT_READ : 0) |
         ((ready & POLLOUT) != 0 ? MYSQL_WAIT_WRITE : 0);
}

// A login in progress. The library suspends it wherever it would wait, so that the greeting can be
// checked and the deadline kept.
class SuspendedLogin {
 public:
  // `host` is null for a socket.
  SuspendedLogin(MYSQL* session, const Target& target, const char* host)
      : session_(session), target_(target), isGreeted_(target.location.isSocket()) {
    const char* const socket = host == nullptr ? target.location.socketPath.c_str() : nullptr;
    wanted_ = mysql_real_connect_start(&connected_, session, host, target.credentials.user.c_str(),
                                       target.credentials.password.text().c_str(), nullptr,
                                       target.location.address.port, socket, 0);
  }
  SuspendedLogin(const SuspendedLogin&) = delete;
  SuspendedLogin& operator=(const SuspendedLogin&) = delete;

  // When the library hears that the time is over, it ends the login and frees its memory. An
  // encrypted login ignores this and ends only when its socket is shut down.
  ~SuspendedLogin() {
    if (wanted_ != 0) ::shutdown(mysql_get_socket(session_), SHUT_RDWR);
    while (wanted_ != 0) resume(MYSQL_WAIT_TIMEOUT);
  }

  // Whether it has succeeded.
  bool finish(const sql::Deadline& deadline) {
    while (wanted_ != 0) {
      target_.cutter.watch(mysql_get_socket(session_));
      const int events = awaitEvents(session_, wanted_, deadline);
      greet(deadline);
      resume(events);
    }
    target_.cutter.watch(mysql_get_socket(session_));
    return connected_ != nullptr;
  }

 private:
  void greet(const sql::Deadline& deadline) {
    const int socket = mysql_get_socket(session_);
    if (isGreeted_ || !isConnected(socket)) return;
    checkGreeting(target_, socket, deadline);
    isGreeted_ = true;
  }

  void resume(int events) { wanted_ = mysql_real_connect_cont(&connected_, session_, events); }

  MYSQL* session_;
  const Target& target_;
  bool isGreeted_;
  MYSQL* connected_ = nullptr;
  int wanted_ = 0;
};

// The library's text of a connection that cannot be made ends with the system's error number.
std::string reasonIn(std::string_view text) {
  int number = 0;
  const std::size_t bracket = text.rfind('(');
  if (bracket != text.npos) {
    std::from_chars(text.data() + bracket + 1, text.data() + text.size(), number);
  }
  return number > 0 ? std::generic_category().message(number) : std::string(text);
}

// A hang-up before login means that no usable server is there: report "cannot reach", not "lost".
[[noreturn]] void failLogin(MYSQL* session, const Target& target, const sql::Deadline& deadline) {
  const unsigned int error = mysql_errno(session);
  const Status status = statusOf(error);
  const bool unreachable = status == Status::kConnectionLost || status == Status::kCannotReach;
  if (unreachable && deadline.passed()) throw Failure(Status::kNoAnswer);
  if (unreachable) failAt(target, Status::kCannotReach, reasonIn(mysql_error(session)));
  if (error == ER_ACCESS_DENIED_ERROR && target.credentials.password.empty()) {
    throw Failure(Status::kPasswordMissing);
  }
  throw Failure(status);
}

// The library keeps the password for another login, which never happens here.
void forgetPassword(MYSQL* session) {
  if (session->passwd != nullptr) ::explicit_bzero(session->passwd, ::strlen(session->passwd));
}

}  // namespace

SessionHandle tryLogin(const Target& target, const char* host, const sql::Deadline& deadline) {
  SessionHandle session = prepare(target, deadline);
  const bool loggedIn = SuspendedLogin(session.get(), target, host).finish(deadline);
  if (!loggedIn) failLogin(session.get(), target, deadline);
  // This is found so late only through a local socket, where nobody can listen.
  if (target.encryption.wanted && mysql_get_ssl_cipher(session.get()) == nullptr) {
    failAt(target, Status::kTlsFailed, sql::message("NO_ENCRYPTION"));
  }
  forgetPassword(session.get());
  return session;
}

}  // namespace tal::mariadb
