#include "tal/postgresql/login.h"

#include <algorithm>
#include <string>
#include <vector>

#include "tal/postgresql/login_attempt.h"
#include "tal/postgresql/parameters.h"
#include "tal/sql/first_reachable.h"
#include "tal/sql/resolve.h"
#include "tal/sql/system_user.h"

namespace tal::postgresql {

ConnectionHandle login(const Location& location, const Credentials& credentials,
                       sql::SocketCutter& cutter, const sql::Deadline& deadline) {
  Target target{.host = location.host,
                .address = {},
                .port = location.port,
                .database = location.database,
                .user = credentials.user.empty() ? sql::systemUser() : credentials.user,
                .password = credentials.password,
                .requireTls = false};
  if (location.isSocket()) return connectTo(target, cutter, deadline);

  const std::vector<std::string> addresses = sql::resolveHost(location.host, deadline);
  target.requireTls = !std::ranges::all_of(addresses, &sql::isLoopback);
  return sql::firstReachable(addresses, deadline,
                             [&](const std::string& address, const sql::Deadline& share) {
                               target.address = address;
                               return connectTo(target, cutter, share);
                             });
}

}  // namespace tal::postgresql
