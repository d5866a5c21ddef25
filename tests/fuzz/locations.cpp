// Server names, and what the client library gets. The lines are the location, the user and the
// password.
#include <libpq-fe.h>

#include <memory>
#include <string>

#include "tal/mariadb/location.h"
#include "tal/postgresql/location.h"
#include "tal/postgresql/login_options.h"
#include "tal/status.h"
#include "tal/text.h"
#include "tests/fuzz/lines.h"
#include "tests/fuzz/target.h"

namespace fuzzing {
namespace {

using tal::postgresql::Target;

// As texts come from a C caller.
std::string takeText(std::string_view& input) {
  const std::string_view line = takeLine(input);
  return std::string(line.substr(0, line.find('\0')));
}

void requireValue(const PQconninfoOption* options, std::string_view keyword,
                  const std::string& value) {
  for (; options->keyword != nullptr; ++options) {
    if (options->keyword != keyword) continue;
    require(options->val != nullptr && options->val == value,
            "the client library reads the value that was meant");
    return;
  }
  require(false, "the client library knows the parameter");
}

void requireCarried(const Target& target) {
  const std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)> options(
      PQconninfoParse(connectionString(target).c_str(), nullptr), &PQconninfoFree);
  require(options != nullptr, "the client library can read the connection string");
  requireValue(options.get(), "host", target.host);
  requireValue(options.get(), "port", std::to_string(target.port));
  requireValue(options.get(), "dbname", target.database);
  requireValue(options.get(), "user", target.user);
  requireValue(options.get(), "sslmode", "require");
}

void readPostgresql(const std::string& text, const std::string& user, const std::string& password) {
  const auto location = tal::postgresql::parseLocation(text);
  require(!location.host.empty() && location.port != 0, "a location names a host and a port");
  require(location.host.find(',') == std::string::npos, "there is one host");
  require(location.isSocket() || location.host.front() != '@', "there is no abstract socket");
  require(!location.database.empty(), "a location names a database");
  for (const char byte : location.host + location.database) {
    require(!tal::isControl(byte), "a location has no control character");
  }
  requireCarried({.host = location.host,
                  .address = "",
                  .port = location.port,
                  .database = location.database,
                  .user = user,
                  .password = password,
                  .encryption = tal::postgresql::Encryption::kUnverified,
                  .bindsPassword = true});
}

void readMariadb(const std::string& text) {
  const auto location = tal::mariadb::parseLocation(text);
  require(location.socketPath.empty() != location.address.host.empty(),
          "a server is reached by its socket or by its host");
  require(location.socketPath.size() < 108, "a socket path fits the system's structure");
  require(!location.socketPath.empty() || location.address.port != 0, "a port is not 0");
}

template <typename Read>
void read(const Read& action) {
  try {
    action();
  } catch (const tal::Failure& failure) {
    require(failure.status() == tal::Status::kBadServerName, "a bad name is refused as such");
  }
}

}  // namespace

void run(std::string_view input) {
  const std::string location = takeText(input);
  const std::string user = takeText(input);
  const std::string password = takeText(input);
  read([&] { readPostgresql(location, user, password); });
  read([&] { readMariadb(location); });
}

}  // namespace fuzzing
