// Parts that several sections of a scenario have in common.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "tal/sim/scenario.h"
#include "tal/sim/table_reader.h"

namespace tal::sim {

// Items that a scenario may stand for in all, each entry counted at its largest.
inline constexpr std::uint64_t kItemLimit = 10'000'000;

// How many of them were announced while a scenario is read.
class ItemBudget {
 public:
  // Throws ScenarioError for that line when the limit is exceeded. Neither factor is above the
  // limit of a 32-bit count.
  void take(std::uint64_t items, std::uint64_t owners, int line);

 private:
  std::uint64_t taken_ = 0;
};

// A table with the keys current, peak and maximum.
void readGauge(TableReader& table, std::string_view key, GaugeValues& gauge);

// The keys count, from and until; the items are taken from the budget, `owners` times.
void readPresence(TableReader& table, Presence& presence, ItemBudget& budget,
                  std::uint64_t owners = 1);

// The list of handles of a file or client; `nameKey` is the key for the name of the other side.
void readHandles(TableReader& owner, const Presence& ownerPresence, std::string_view nameKey,
                 ItemBudget& budget, std::vector<HandleEntry>& handles);

}  // namespace tal::sim
