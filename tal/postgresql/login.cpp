#include "tal/postgresql/login.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "tal/failure.h"
#include "tal/postgresql/exceptions.h"
#include "tal/postgresql/login_attempt.h"
#include "tal/postgresql/login_options.h"
#include "tal/sql/first_reachable.h"
#include "tal/sql/resolve.h"
#include "tal/sql/system_user.h"

namespace tal::postgresql {
namespace {

// What one server may do, and where it is.
struct Rules {
  Exceptions exceptions;
  bool isElsewhere = false;  // on another machine, as far as its addresses say

  [[nodiscard]] Asking asking() const {
    return exceptions.weakPassword ? Asking::kAnyhow : Asking::kSafely;
  }

  [[nodiscard]] Encryption encryption() const {
    const bool isVerified = isElsewhere && hasRootCertificate();
    return encryptionWished(isVerified ? Encryption::kName : Encryption::kUnverified);
  }

  [[nodiscard]] bool mayGoWithout() const {
    return (!isElsewhere || exceptions.unencrypted) &&
           encryptionWished(Encryption::kNone) == Encryption::kNone;
  }
};

Target targetOf(const Location& location, const Credentials& credentials) {
  Target target;
  target.host = location.host;
  target.port = location.port;
  target.database = location.database;
  target.user = credentials.user.empty() ? sql::systemUser() : credentials.user;
  target.password = credentials.password;
  target.password = passwordFor(target);
  return target;
}

ConnectionHandle logInWithout(Target target, const Rules& rules, sql::SocketCutter& cutter,
                              const sql::Deadline& deadline) {
  target.encryption = Encryption::kNone;
  target.bindsPassword = bindingWished();
  return *tryLogin(target, rules.asking(), cutter, deadline);
}

// A server that offers no encryption is asked again without, where that is allowed.
ConnectionHandle logInTo(Target target, const Rules& rules, sql::SocketCutter& cutter,
                         const sql::Deadline& deadline) {
  target.encryption = rules.encryption();
  target.bindsPassword =
      bindingWished() || (!target.password.empty() && rules.asking() == Asking::kSafely);
  std::optional<ConnectionHandle> connection = tryLogin(target, rules.asking(), cutter, deadline);
  if (connection) return std::move(*connection);
  if (!rules.mayGoWithout()) throw Failure(Status::kTlsFailed);
  return logInWithout(target, rules, cutter, deadline);
}

}  // namespace

ConnectionHandle login(const Location& location, const Credentials& credentials,
                       sql::SocketCutter& cutter, const sql::Deadline& deadline) {
  Rules rules{.exceptions = exceptionsFor(location)};
  Target target = targetOf(location, credentials);
  if (location.isSocket()) return logInWithout(target, rules, cutter, deadline);

  const std::vector<std::string> addresses = sql::resolveHost(location.host, deadline);
  rules.isElsewhere = !std::ranges::all_of(addresses, &sql::isLoopback);
  return sql::firstReachable(addresses, deadline,
                             [&](const std::string& address, const sql::Deadline& share) {
                               target.address = address;
                               return logInTo(target, rules, cutter, share);
                             });
}

}  // namespace tal::postgresql
