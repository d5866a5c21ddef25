// Where the other end of a connection is.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tal::mariadb {

// The host of "host:port" as the server's process list has it: a resolved name or an address, the
// port after the last colon. A connection by socket has no port.
std::string_view hostOf(std::string_view hostAndPort);

// What the server knows of a connection's other end.
struct Peer {
  std::string hostAndPort;
  std::optional<std::string> ip;  // empty for a socket; not known without the performance schema

  // The address; the word "Socket" for a socket. Where it is not known, the host.
  [[nodiscard]] std::string address() const;

  // A code of tal::site.
  [[nodiscard]] std::int32_t site() const;
};

}  // namespace tal::mariadb
