// The place of a MariaDB server.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tal/sql/address.h"

namespace tal::mariadb {

inline constexpr std::uint16_t kDefaultPort = 3306;

struct Location {
  std::string socketPath;  // of a server on this machine; empty for TCP
  sql::Address address;    // used if there is no socket path

  [[nodiscard]] bool isSocket() const { return !socketPath.empty(); }
};

// Reads "host", "host:port", "[address]:port" or "/path/of/the/socket". A host is always reached by
// TCP, "localhost" too. Throws Failure(kBadServerName) for anything else, an empty text included.
Location parseLocation(std::string_view text);

}  // namespace tal::mariadb
