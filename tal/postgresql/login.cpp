#include "tal/postgresql/login.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "tal/failure.h"
#include "tal/postgresql/login_attempt.h"
#include "tal/postgresql/parameters.h"
#include "tal/sql/resolve.h"
#include "tal/sql/system_user.h"

namespace tal::postgresql {
namespace {

bool mayWorkElsewhere(Status status) {
  return status == Status::kCannotReach || status == Status::kNoAnswer;
}

ConnectionHandle connectToAny(Target target, const std::vector<std::string>& addresses,
                              const sql::Deadline& deadline) {
  for (auto left = static_cast<std::int64_t>(addresses.size()); left > 1; --left) {
    target.address = addresses[addresses.size() - static_cast<std::size_t>(left)];
    try {
      return connectTo(target, deadline.within(deadline.remaining() / left));
    } catch (const Failure& failure) {
      if (!mayWorkElsewhere(failure.status())) throw;
    }
  }
  target.address = addresses.back();
  return connectTo(target, deadline);
}

}  // namespace

ConnectionHandle login(const Location& location, const Credentials& credentials,
                       const sql::Deadline& deadline) {
  Target target{.host = location.host,
                .address = {},
                .port = location.port,
                .database = location.database,
                .user = credentials.user.empty() ? sql::systemUser() : credentials.user,
                .password = credentials.password,
                .requireTls = false};
  if (location.isSocket()) return connectTo(target, deadline);

  const std::vector<std::string> addresses = sql::resolveHost(location.host, deadline);
  target.requireTls = !std::ranges::all_of(addresses, &sql::isLoopback);
  return connectToAny(std::move(target), addresses, deadline);
}

}  // namespace tal::postgresql
