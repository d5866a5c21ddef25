#include "tal/mariadb/connection.h"

#include <mysqld_error.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <vector>

#include "tal/failure.h"
#include "tal/mariadb/pipe_signal.h"
#include "tal/mariadb/server_errors.h"
#include "tal/mariadb/watchdog.h"
#include "tal/sql/first_reachable.h"
#include "tal/sql/resolve.h"
#include "tal/sql/wait.h"

namespace tal::mariadb {
namespace {

using Handle = std::unique_ptr<MYSQL, CloseConnection>;

// Of the stack on which the client library suspends an operation; its default is a quarter.
constexpr std::size_t kOperationStack = 256UL * 1024;

// Waits for what a suspended operation wants, and returns what it is resumed with. Past the
// deadline that is a time-out: it makes the library end the operation and free what it holds. An
// encrypted connection does not listen to it, but to the loss of its socket.
int awaitEvents(MYSQL* mysql, int wanted, const sql::Deadline& deadline) {
  const bool reads = (wanted & MYSQL_WAIT_READ) != 0;
  const bool writes = (wanted & MYSQL_WAIT_WRITE) != 0;
  try {
    const auto events = static_cast<short>((reads ? POLLIN : 0) | (writes ? POLLOUT : 0));
    const int ready = sql::waitForSocket(mysql_get_socket(mysql), events, deadline);
    return ((ready & POLLIN) != 0 ? MYSQL_WAIT_READ : 0) |
           ((ready & POLLOUT) != 0 ? MYSQL_WAIT_WRITE : 0);
  } catch (const Failure&) {
    ::shutdown(mysql_get_socket(mysql), SHUT_RDWR);
    return MYSQL_WAIT_TIMEOUT;
  }
}

// Runs one operation of the library to its end; false when the deadline passed first.
template <typename Start, typename Resume>
bool run(MYSQL* mysql, const sql::Deadline& deadline, Start start, Resume resume) {
  const PipeSignalBlocked blocked;
  Watchdog watchdog(deadline);
  watchdog.guard(mysql_get_socket(mysql));
  bool inTime = true;
  int wanted = start();
  while (wanted != 0) {
    watchdog.guard(mysql_get_socket(mysql));
    const int events = awaitEvents(mysql, wanted, deadline);
    inTime = inTime && events != MYSQL_WAIT_TIMEOUT;
    wanted = resume(events);
  }
  return inTime && !watchdog.hasBitten();
}

[[noreturn]] void fail(MYSQL* mysql, bool inTime) {
  throw Failure(inTime ? statusOf(mysql_errno(mysql)) : Status::kNoAnswer);
}

void setOption(MYSQL* mysql, mysql_option option, const void* value) {
  if (mysql_options(mysql, option, value) != 0) throw Failure(Status::kInternalError);
}

void setTimeLimits(MYSQL* mysql, const sql::Deadline& deadline) {
  const auto seconds = static_cast<unsigned int>(
      std::chrono::ceil<std::chrono::seconds>(deadline.remaining()).count());
  const unsigned int limit = std::max(seconds, 1U);
  setOption(mysql, MYSQL_OPT_NONBLOCK, &kOperationStack);
  // The library waits by itself while it negotiates encryption and when it says good-bye.
  setOption(mysql, MYSQL_OPT_CONNECT_TIMEOUT, &limit);
  setOption(mysql, MYSQL_OPT_READ_TIMEOUT, &limit);
  setOption(mysql, MYSQL_OPT_WRITE_TIMEOUT, &limit);
}

void setEncryption(MYSQL* mysql, const Encryption& encryption) {
  const my_bool wanted = encryption.wanted ? 1 : 0;
  const my_bool verified = encryption.verified ? 1 : 0;
  setOption(mysql, MYSQL_OPT_SSL_ENFORCE, &wanted);
  setOption(mysql, MYSQL_OPT_SSL_VERIFY_SERVER_CERT, &verified);
  if (!encryption.wanted) return;
  for (const auto& [option, value] : encryption.settings) setOption(mysql, option, value.c_str());
}

// The ways to log in that the server may ask for. By these it never learns the password; by the
// others it does, or by its own key may, so that they are for a server that has proved who it is.
// None of them talks to the user on the terminal.
void restrictLogin(MYSQL* mysql, const Encryption& encryption) {
  setOption(mysql, MARIADB_OPT_RESTRICTED_AUTH,
            encryption.verified ? "mysql_native_password,client_ed25519,caching_sha2_password,"
                                  "mysql_clear_password"
                                : "mysql_native_password,client_ed25519");
}

Handle prepare(const Location& location, const Encryption& encryption,
               const sql::Deadline& deadline) {
  Handle handle(mysql_init(nullptr));
  if (!handle) throw Failure(Status::kOutOfMemory);

  const unsigned int protocol =
      location.socketPath.empty() ? MYSQL_PROTOCOL_TCP : MYSQL_PROTOCOL_SOCKET;
  const my_bool off = 0;
  const unsigned int noLocalFiles = 0;  // the server could ask for any file of this machine
  setTimeLimits(handle.get(), deadline);
  setOption(handle.get(), MYSQL_OPT_PROTOCOL, &protocol);
  setOption(handle.get(), MYSQL_OPT_RECONNECT, &off);
  setOption(handle.get(), MYSQL_OPT_LOCAL_INFILE, &noLocalFiles);
  setOption(handle.get(), MYSQL_SET_CHARSET_NAME, "utf8mb4");
  if (mysql_optionsv(handle.get(), MYSQL_OPT_CONNECT_ATTR_ADD, "program_name", "zelk") != 0) {
    throw Failure(Status::kInternalError);
  }
  restrictLogin(handle.get(), encryption);
  setEncryption(handle.get(), encryption);
  return handle;
}

// While there is no session yet, there is none to lose: what hangs up then is no server, or one
// that is just going away.
[[noreturn]] void failLogin(MYSQL* mysql, bool inTime, const Credentials& credentials) {
  const unsigned int error = mysql_errno(mysql);
  if (inTime && error == ER_ACCESS_DENIED_ERROR && credentials.password.empty()) {
    throw Failure(Status::kPasswordMissing);
  }
  if (inTime && statusOf(error) == Status::kConnectionLost) throw Failure(Status::kCannotReach);
  fail(mysql, inTime);
}

// `host` is null for a socket.
Handle logIn(const char* host, const Location& location, const Credentials& credentials,
             const Encryption& encryption, const sql::Deadline& deadline) {
  Handle handle = prepare(location, encryption, deadline);
  MYSQL* const mysql = handle.get();
  const char* const socket = location.socketPath.empty() ? nullptr : location.socketPath.c_str();
  MYSQL* connected = nullptr;

  const bool inTime = run(
      mysql, deadline,
      [&] {
        return mysql_real_connect_start(&connected, mysql, host, credentials.user.c_str(),
                                        credentials.password.c_str(), nullptr,
                                        location.address.port, socket, 0);
      },
      [&](int events) { return mysql_real_connect_cont(&connected, mysql, events); });

  if (connected == nullptr) failLogin(mysql, inTime, credentials);
  // The library goes on in clear text when the server offers no encryption.
  if (encryption.wanted && mysql_get_ssl_cipher(mysql) == nullptr) {
    throw Failure(Status::kTlsFailed);
  }
  return handle;
}

// A certificate is checked against the name that was asked for, so that name must reach the
// library; otherwise it gets numeric addresses, for its own look-up knows no time limit: once
// more for a name that has just been found.
std::vector<std::string> hostsToTry(const Location& location, const Encryption& encryption,
                                    const sql::Deadline& deadline) {
  std::vector<std::string> addresses = sql::resolveHost(location.address.host, deadline);
  if (encryption.verified) return {location.address.host};
  return addresses;
}

Handle logInAnywhere(const Location& location, const Credentials& credentials,
                     const Encryption& encryption, const sql::Deadline& deadline) {
  initialiseClientLibrary();
  if (!location.socketPath.empty()) {
    return logIn(nullptr, location, credentials, encryption, deadline);
  }
  return sql::firstReachable(hostsToTry(location, encryption, deadline), deadline,
                             [&](const std::string& host, const sql::Deadline& share) {
                               return logIn(host.c_str(), location, credentials, encryption, share);
                             });
}

}  // namespace

void CloseConnection::operator()(MYSQL* mysql) const noexcept {
  const PipeSignalBlocked blocked;
  mysql_close(mysql);
}

Connection::Connection(const Location& location, const Credentials& credentials,
                       const Encryption& encryption, const sql::Deadline& deadline)
    : mysql_(logInAnywhere(location, credentials, encryption, deadline)) {}

Result Connection::query(const char* statement, const sql::Deadline& call) {
  const sql::Deadline deadline = call.within(sql::kStatementLimit);
  MYSQL* const mysql = mysql_.get();

  int failed = 0;
  bool inTime = run(
      mysql, deadline,
      [&] { return mysql_real_query_start(&failed, mysql, statement, std::strlen(statement)); },
      [&](int events) { return mysql_real_query_cont(&failed, mysql, events); });
  if (failed != 0) fail(mysql, inTime);

  MYSQL_RES* rows = nullptr;
  inTime = run(
      mysql, deadline, [&] { return mysql_store_result_start(&rows, mysql); },
      [&](int events) { return mysql_store_result_cont(&rows, mysql, events); });
  // A statement that runs over its limit succeeds at first and fails while its rows are read.
  if (rows == nullptr && mysql_errno(mysql) != 0) fail(mysql, inTime);
  return Result(rows);
}

std::int64_t Connection::id() const {
  return static_cast<std::int64_t>(mysql_thread_id(mysql_.get()));
}

std::int64_t Connection::version() const {
  return static_cast<std::int64_t>(mysql_get_server_version(mysql_.get()));
}

bool Connection::isMariaDb() const { return mariadb_connection(mysql_.get()) != 0; }

}  // namespace tal::mariadb
