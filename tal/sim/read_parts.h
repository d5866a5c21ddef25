// Parts that several sections of a scenario have in common.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "tal/sim/scenario.h"
#include "tal/sim/table_reader.h"

namespace tal::sim {

// How many items were announced while a scenario is read, and what they take up.
class ItemBudget {
 public:
  // Takes items with texts of so many bytes each. Throws ScenarioError for that line when
  // kItemLimit or kByteLimit is exceeded. Neither `items` nor `owners` is above the limit of a
  // 32-bit count.
  void take(std::uint64_t items, std::uint64_t owners, std::uint64_t textBytes, int line);

 private:
  std::uint64_t items_ = 0;
  std::uint64_t bytes_ = 0;
};

// A table with the keys current, peak and maximum.
void readGauge(TableReader& table, std::string_view key, GaugeValues& gauge);

// The keys count, from and until; the items are taken from the budget, `owners` times. To be read
// after the texts of the table, which are counted too.
void readPresence(TableReader& table, Presence& presence, ItemBudget& budget,
                  std::uint64_t owners = 1);

// The list of handles of a file or client; `nameKey` is the key for the name of the other side.
void readHandles(TableReader& owner, const Presence& ownerPresence, std::string_view nameKey,
                 ItemBudget& budget, std::vector<HandleEntry>& handles);

}  // namespace tal::sim
