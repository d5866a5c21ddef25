// High-water marks that the servers do not keep.
#pragma once

#include <algorithm>
#include <cstdint>

#include "tal/engine.h"
#include "tal/sql/numbers.h"

namespace tal::sql {

// The highest value of one figure since the connection was opened. The first sample is its own
// peak.
class Peak {
 public:
  // The gauge for a new sample; `maximum` is 0 if there is none.
  Gauge sample(std::int64_t current, std::int64_t maximum = 0) noexcept {
    highest_ = std::max(highest_, clampUnsigned(current));
    return {clampUnsigned(current), highest_, clampMaximum(maximum)};
  }

 private:
  std::uint32_t highest_ = 0;
};

}  // namespace tal::sql
