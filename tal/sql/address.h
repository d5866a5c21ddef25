// The addresses of a server: as a server name has them, and looked up.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tal/sql/deadline.h"

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

// The numeric addresses of a host, in the order in which they should be tried; at least one. A
// numeric host is its own address. Throws Failure: kCannotReach for an unknown host (an
// ExplainedFailure), kNoAnswer if `deadline` passes first.
std::vector<std::string> resolveHost(const std::string& host, const Deadline& deadline);

// Whether a numeric address is one of this machine's loopback addresses.
bool isLoopback(const std::string& address);

}  // namespace tal::sql
