// Values of a scenario. They depend on the refresh, and on the number of the item.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace tal::sim {

// Which value is requested; all numbers count from 1.
struct Place {
  std::uint64_t refresh = 1;
  std::uint64_t item = 1;   // among the items of one entry of the scenario
  std::uint64_t owner = 1;  // of a handle: its file or client, among those of its entry
};

// The entry for `refresh` (from 1) in a list with an entry for each refresh; the last one repeats.
// The list must not be empty.
template <typename Value>
const Value& byRefresh(const std::vector<Value>& values, std::uint64_t refresh) {
  return values[static_cast<std::size_t>(std::min<std::uint64_t>(refresh, values.size())) - 1];
}

// `base` after so many steps, limited to the 64-bit range.
std::int64_t afterSteps(std::int64_t base, std::int64_t step, std::uint64_t times) noexcept;

// A number that fits a field of type Field at every place: it never goes beyond the end of the
// range.
template <std::integral Field>
class Number {
 public:
  static constexpr std::int64_t kLowest = std::numeric_limits<Field>::min();
  static constexpr std::int64_t kHighest = std::numeric_limits<Field>::max();

  // The same value at every place.
  Number(Field always) : values_{std::int64_t{always}} {}

  // One value for each refresh, at least one and all in the field's range. `step` is added with
  // every refresh, `each` with every item.
  Number(std::vector<std::int64_t> values, std::int64_t step, std::int64_t each)
      : values_(std::move(values)), step_(step), each_(each) {}

  [[nodiscard]] Field at(const Place& place) const noexcept {
    const std::int64_t base = byRefresh(values_, place.refresh);
    if (step_ == 0 && each_ == 0) return static_cast<Field>(base);
    const std::int64_t stepped = afterSteps(base, step_, place.refresh - 1);
    const std::int64_t sum = afterSteps(stepped, each_, place.item - 1);
    return static_cast<Field>(std::clamp(sum, kLowest, kHighest));
  }

  // The largest value in the list; steps are ignored.
  [[nodiscard]] Field largest() const noexcept {
    return static_cast<Field>(std::ranges::max(values_));
  }

 private:
  std::vector<std::int64_t> values_;
  std::int64_t step_ = 0;
  std::int64_t each_ = 0;
};

// A text in which {n} stands for the number of the item, {owner} for that of its owner and {xHH}
// for the byte with that hexadecimal number. Other braces are not changed.
class Text {
 public:
  Text() : values_(1) {}

  // One text for each refresh, at least one.
  explicit Text(std::vector<std::string> values) : values_(std::move(values)) {}

  [[nodiscard]] std::string at(const Place& place) const;

  // Bytes of the longest text up to item and owner number `items`, whatever the refresh.
  [[nodiscard]] std::size_t longest(std::uint64_t items) const;

 private:
  std::vector<std::string> values_;
};

}  // namespace tal::sim
