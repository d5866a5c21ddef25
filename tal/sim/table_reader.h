// One table of a scenario, key by key. Every function throws ScenarioError for a value that does
// not fit; the message names the value and what is expected.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tal/recording/fields.h"
#include "tal/sim/document.h"
#include "tal/sim/scenario.h"
#include "tal/sim/values.h"

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

// Reads the keys of a table into the values of a scenario. An absent key leaves its value
// unchanged.
class TableReader {
 public:
  // The table must outlive the reader. `where` is its name in messages, such as "[usage]".
  TableReader(const Node::Table& table, int line, std::string where);

  // The same for a node that is a table.
  TableReader(const Node& table, std::string where);

  [[nodiscard]] int line() const noexcept { return line_; }

  // The bytes that the texts read so far take in one item, each at its longest.
  [[nodiscard]] std::size_t textBytes() const noexcept { return textBytes_; }

  template <std::integral Field>
  void read(const recording::Key& key, Number<Field>& number, Forms forms = Forms::kStepped) {
    const Member* const member = take(key.name);
    if (member == nullptr) return;
    NumberValue value =
        numberOf(*member, {Number<Field>::kLowest, Number<Field>::kHighest, key.words, forms});
    number = Number<Field>(std::move(value.byRefresh), value.step, value.each);
  }

  void read(const recording::Key& key, Text& text);

  // A table with the keys current, peak and maximum.
  void read(const recording::Key& key, GaugeValues& gauge);

  // A visitor that reads each field (see tal/recording/fields.h).
  [[nodiscard]] auto visitor() {
    return [this](const recording::Key& key, auto& field) { read(key, field); };
  }

  // A single number or text; nothing if the key is absent.
  [[nodiscard]] std::optional<std::int64_t> number(std::string_view key, std::int64_t lowest,
                                                   std::int64_t highest);
  [[nodiscard]] std::optional<std::string> text(std::string_view key);

  // The reader of a table inside this one; nothing if the key is absent.
  [[nodiscard]] std::optional<TableReader> table(std::string_view key, std::string where);

  // The tables of a list of tables; empty if the key is absent.
  [[nodiscard]] std::vector<const Node*> tables(std::string_view key);

  // Refuses a table that lacks the key.
  void require(std::string_view key) const;

  // Refuses the value of a key that the table has.
  [[noreturn]] void refuseValue(std::string_view key, std::string_view expected) const;

  // Refuses the first key that was not read.
  void finish() const;

 private:
  [[nodiscard]] const Member* find(std::string_view key) const;
  [[nodiscard]] const Member* take(std::string_view key);

  const Node::Table* table_;
  int line_;
  std::string where_;
  std::size_t textBytes_ = 0;
  std::vector<std::string_view> asked_;
};

}  // namespace tal::sim
