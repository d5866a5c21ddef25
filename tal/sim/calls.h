// Counts calls, for the refreshes and the faults of a scenario.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tal/engine.h"
#include "tal/sim/scenario.h"

namespace tal::sim {

// The call of this name; nothing for another name, and for TalStart, which precedes every scenario.
std::optional<Call> callNamed(std::string_view name);

// Counts the calls on one connection. Every list has its own refreshes: the calls that take its
// snapshot, whether they succeed or not. The refresh of any other call is the number of times it
// was made.
class Calls {
 public:
  explicit Calls(const std::vector<Fault>& faults);

  // Counts the call, and says which status to return instead of an answer.
  Status count(Call call);

  // The present refresh of a list or counter, from 1.
  [[nodiscard]] std::uint64_t refresh(Call call) const noexcept;

 private:
  struct Counter {
    std::uint64_t inAll = 0;
    std::uint64_t inRefresh = 0;
  };
  static constexpr std::size_t kCalls = static_cast<std::size_t>(Call::kFreeSQLConnectionsData) + 1;

  // A fault and its place in the scenario. If several fit, the first one counts.
  struct Ordered {
    std::size_t place;
    Status status;
  };
  // The first fault for each refresh and number of a call; 0 stands for all.
  using Numbers = std::unordered_map<std::uint64_t, Ordered>;
  using Refreshes = std::unordered_map<std::uint64_t, Numbers>;

  [[nodiscard]] const Ordered* faultAt(Call call, std::uint64_t refresh, std::uint64_t at) const;

  std::array<Refreshes, kCalls> faults_;
  std::array<Counter, kCalls> counters_{};
};

}  // namespace tal::sim
