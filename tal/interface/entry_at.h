// Indexes of the interface.
#pragma once

#include <cstdint>
#include <vector>

#include "tal/failure.h"
#include "tal/status.h"

namespace tal::interface {

// The entry at `index`, counted from 0. Throws Failure kNoEntry, which ends a list, beyond it.
template <typename Entry>
const Entry& entryAt(const std::vector<Entry>& list, std::uint32_t index) {
  if (index >= list.size()) throw Failure(Status::kNoEntry);
  return list[index];
}

}  // namespace tal::interface
