// One value of a scenario. Every function throws ScenarioError for a value that does not fit; the
// message names the value and what is expected.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tal/recording/words.h"
#include "tal/sim/document.h"

namespace tal::sim {

// The forms in which a value may be given.
enum class Forms {
  kOne,        // a single value
  kByRefresh,  // or a list with one for each refresh
  kStepped,    // or a table with a start, and a step for refreshes and items
};

struct NumberFormat {
  std::int64_t lowest;
  std::int64_t highest;
  recording::Words words = {};
  Forms forms = Forms::kOne;
};

struct NumberValue {
  std::vector<std::int64_t> byRefresh;  // at least one
  std::int64_t step = 0;
  std::int64_t each = 0;
};

NumberValue numberOf(const Member& member, const NumberFormat& format);

// At least one text; exactly one if no list is allowed.
std::vector<std::string> textsOf(const Member& member, Forms forms);

const Node::Table& tableOf(const Member& member);

// The tables of a list of tables.
std::vector<const Node*> tablesOf(const Member& member);

// Refuses the value, or a part of it, that a key has.
[[noreturn]] void refuse(std::string_view key, const Node& value, std::string_view expected);

}  // namespace tal::sim
