// The server and its database.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tal::postgresql {

inline constexpr std::uint16_t kDefaultPort = 5432;

struct Location {
  std::string host;  // name or numeric address, or the folder of the server's socket
  std::uint16_t port = kDefaultPort;
  std::string database;

  [[nodiscard]] bool isSocket() const { return host.starts_with('/'); }
};

// Reads one of
//
//   host[:port][/database]       over the network; an IPv6 address stands in brackets
//   /folder[:[port][/database]]  through the socket in that folder
//
// A folder reaches to the first ":", so that a database can only follow a port, which may be empty:
// "/run/postgresql:/app1". The database is everything after its "/". The default port is 5432, and
// the default database "postgres". Throws Failure(kBadServerName) for anything else.
Location parseLocation(std::string_view text);

}  // namespace tal::postgresql
