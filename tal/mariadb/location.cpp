#include "tal/mariadb/location.h"

#include <sys/un.h>

#include "tal/sql/message.h"
#include "tal/status.h"

namespace tal::mariadb {
namespace {

constexpr std::size_t kLongestPath = sizeof(sockaddr_un::sun_path) - 1;

std::string checkedSocketPath(std::string_view path) {
  const bool named = path.back() != '/' && path.find('\0') == std::string_view::npos;
  if (!named || path.size() > kLongestPath) throw Failure(Status::kBadServerName);
  return std::string(path);
}

// Parts that server names have in other programs. Here they stand in other settings.
void refuseForeignParts(std::string_view text) {
  if (text.find('@') != text.npos) {
    throw sql::ExplainedFailure(Status::kBadServerName, sql::message("USER_IN_NAME"));
  }
  if (text.find('/') != text.npos) {
    throw sql::ExplainedFailure(Status::kBadServerName, sql::message("DATABASE_IN_NAME"));
  }
}

}  // namespace

Location parseLocation(std::string_view text) {
  if (text.starts_with('/')) return {.socketPath = checkedSocketPath(text), .address = {}};
  refuseForeignParts(text);
  return {.socketPath = {}, .address = sql::parseAddress(text, kDefaultPort)};
}

}  // namespace tal::mariadb
