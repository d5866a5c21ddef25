// Looking up host names within a time limit. In the look-up of the system, which the client
// libraries use, a caller cannot set a limit.
#pragma once

#include <string>
#include <vector>

#include "tal/sql/deadline.h"

namespace tal::sql {

// The numeric addresses of a host, in the order in which they should be tried; at least one. A
// numeric host is its own address. Throws Failure: kCannotReach for an unknown host (an
// ExplainedFailure), kNoAnswer if `deadline` passes first.
std::vector<std::string> resolveHost(const std::string& host, const Deadline& deadline);

// Whether a numeric address is one of this machine's loopback addresses.
bool isLoopback(const std::string& address);

}  // namespace tal::sql
