#include "tal/mariadb/login.h"

#include <signal.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "tal/mariadb/login_attempt.h"
#include "tal/sql/address.h"
#include "tal/sql/login.h"
#include "tal/status.h"

namespace tal::mariadb {
namespace {

void initialise() {
  struct sigaction programs {};
  ::sigaction(SIGPIPE, nullptr, &programs);
  const int failed = mysql_server_init(0, nullptr, nullptr);
  ::sigaction(SIGPIPE, &programs, nullptr);
  if (failed != 0) throw Failure(Status::kInternalError);
}

}  // namespace

void initialiseClientLibrary() {
  static std::once_flag initialised;
  std::call_once(initialised, initialise);
}

SessionHandle login(const Location& location, const Credentials& credentials,
                    const Encryption& encryption, sql::SocketCutter& cutter,
                    const sql::Deadline& deadline) {
  initialiseClientLibrary();
  if (location.isSocket()) {
    return tryLogin({location, credentials, encryption, cutter}, nullptr, deadline);
  }

  std::vector<std::string> hosts = sql::resolveHost(location.address.host, deadline);
  const bool isLocal = std::ranges::all_of(hosts, &sql::isLoopback);
  const Encryption used = isLocal ? encryption : encryption.forNetwork();
  // Pass numeric addresses, because the DNS look-up of the library has no timeout. Exception:
  // certificate checks need the name.
  if (used.verified) hosts = {location.address.host};
  return sql::firstReachable(
      hosts, deadline, [&](const std::string& host, const sql::Deadline& share) {
        return tryLogin({location, credentials, used, cutter}, host.c_str(), share);
      });
}

}  // namespace tal::mariadb
