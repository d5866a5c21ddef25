#include "tal/postgresql/login.h"

#include <optional>
#include <string>
#include <vector>

#include "tal/postgresql/login_attempt.h"
#include "tal/postgresql/login_options.h"
#include "tal/postgresql/login_rules.h"
#include "tal/sql/address.h"
#include "tal/sql/login.h"
#include "tal/status.h"

namespace tal::postgresql {
namespace {

Asking askingBy(const LoginRules& rules) {
  return rules.weakPassword ? Asking::kAnyhow : Asking::kSafely;
}

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

void protectPassword(Target& target, const LoginRules& rules) {
  target.scramOnly = !target.password.empty() && !rules.weakPassword;
  target.bindsPassword =
      bindingWished() || (target.scramOnly && target.encryption != Encryption::kNone);
}

ConnectionHandle logInWithout(Target target, const LoginRules& rules, sql::SocketCutter& cutter,
                              const sql::Deadline& deadline) {
  target.encryption = Encryption::kNone;
  protectPassword(target, rules);
  return *tryLogin(target, askingBy(rules), cutter, deadline);
}

// If the server offers no encryption, a second attempt goes without it, if that is allowed.
ConnectionHandle logInTo(Target target, const LoginRules& rules, sql::SocketCutter& cutter,
                         const sql::Deadline& deadline) {
  target.encryption = rules.encryption();
  protectPassword(target, rules);
  std::optional<ConnectionHandle> connection = tryLogin(target, askingBy(rules), cutter, deadline);
  if (connection) return std::move(*connection);
  if (!rules.mayGoWithout()) throw Failure(Status::kTlsFailed);
  return logInWithout(target, rules, cutter, deadline);
}

}  // namespace

ConnectionHandle login(const Location& location, const Credentials& credentials,
                       sql::SocketCutter& cutter, const sql::Deadline& deadline) {
  Target target = targetOf(location, credentials);
  if (location.isSocket()) return logInWithout(target, rulesFor(location, {}), cutter, deadline);

  const std::vector<std::string> addresses = sql::resolveHost(location.host, deadline);
  const LoginRules rules = rulesFor(location, addresses);
  return sql::firstReachable(addresses, deadline,
                             [&](const std::string& address, const sql::Deadline& share) {
                               target.address = address;
                               return logInTo(target, rules, cutter, share);
                             });
}

}  // namespace tal::postgresql
