// What the logins of the engines have in common.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tal/sql/deadline.h"
#include "tal/status.h"

namespace tal::sql {

// Returns the result of `connect(address, deadline)` for the first address that can be reached.
// Each gets an equal share of the remaining time, so that a silent one does not hide the others.
// After a Failure that shows an answer of a server, no other address is tried. `addresses` is not
// empty.
template <typename Connect>
auto firstReachable(const std::vector<std::string>& addresses, const Deadline& deadline,
                    const Connect& connect) {
  for (std::size_t i = 0; i + 1 < addresses.size(); ++i) {
    const auto share = deadline.remaining() / (addresses.size() - i);
    try {
      return connect(addresses[i], deadline.within(share));
    } catch (const Failure& failure) {
      const bool unreachable =
          failure.status() == Status::kCannotReach || failure.status() == Status::kNoAnswer;
      if (!unreachable) throw;
    }
  }
  return connect(addresses.back(), deadline);
}

// The name of the operating-system user whose rights this process has. Environment and terminal do
// not matter. Throws Failure(kLoginRefused) if the user has no name.
std::string systemUser();

}  // namespace tal::sql
