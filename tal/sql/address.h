// The host part of a server name: "host[:port]" with an IPv6 address in brackets.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tal::sql {

struct Address {
  std::string host;  // name or numeric address, without brackets; never empty
  std::uint16_t port = 0;
};

// Reads a port: decimal digits, 1 to 65535; an empty text is `defaultPort`. Throws
// Failure(kBadServerName) for anything else.
std::uint16_t parsePort(std::string_view text, std::uint16_t defaultPort);

// Reads "host", "host:port", "[address]" or "[address]:port"; a port that is left out or empty is
// `defaultPort`. Host names hold visible ASCII other than , @ / [ ] and :. Throws
// Failure(kBadServerName) if `text` has another form.
Address parseAddress(std::string_view text, std::uint16_t defaultPort);

}  // namespace tal::sql
