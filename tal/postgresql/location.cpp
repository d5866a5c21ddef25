#include "tal/postgresql/location.h"

#include <algorithm>

#include "tal/sql/address.h"
#include "tal/status.h"
#include "tal/text.h"

namespace tal::postgresql {
namespace {

constexpr std::string_view kDefaultDatabase = "postgres";

// The text before the first `separator`, and the text after it.
struct Halves {
  std::string_view before;
  std::string_view after;
};

Halves splitAt(std::string_view text, char separator) {
  const std::size_t at = text.find(separator);
  if (at == std::string_view::npos) return {text, {}};
  return {text.substr(0, at), text.substr(at + 1)};
}

std::string databaseOr(std::string_view database) {
  return std::string(database.empty() ? kDefaultDatabase : database);
}

Location parseSocket(std::string_view text) {
  const auto [folder, rest] = splitAt(text, ':');
  // The client library would treat a comma as the end of the folder.
  if (folder.find(',') != std::string_view::npos) throw Failure(Status::kBadServerName);

  const auto [port, database] = splitAt(rest, '/');
  return {std::string(folder), sql::parsePort(port, kDefaultPort), databaseOr(database)};
}

}  // namespace

Location parseLocation(std::string_view text) {
  if (std::ranges::any_of(text, &isControl)) throw Failure(Status::kBadServerName);
  if (text.starts_with('/')) return parseSocket(text);

  const auto [hostAndPort, database] = splitAt(text, '/');
  sql::Address address = sql::parseAddress(hostAndPort, kDefaultPort);
  return {std::move(address.host), address.port, databaseOr(database)};
}

}  // namespace tal::postgresql
