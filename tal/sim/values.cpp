#include "tal/sim/values.h"

#include <charconv>
#include <optional>
#include <string_view>

namespace tal::sim {
namespace {

// The byte that "xHH" names.
std::optional<char> byteNamed(std::string_view name) {
  if (name.size() != 3 || name.front() != 'x') return std::nullopt;
  unsigned byte = 0;
  const char* const end = name.data() + name.size();
  const auto [stop, error] = std::from_chars(name.data() + 1, end, byte, 16);
  if (error != std::errc() || stop != end) return std::nullopt;
  return static_cast<char>(byte);
}

// Appends the replacement of "{name}"; false if there is none.
bool appendNamed(std::string& out, std::string_view name, const Place& place) {
  if (name == "n") {
    out.append(std::to_string(place.item));
  } else if (name == "owner") {
    out.append(std::to_string(place.owner));
  } else if (const std::optional<char> byte = byteNamed(name)) {
    out.push_back(*byte);
  } else {
    return false;
  }
  return true;
}

std::string expanded(std::string_view text, const Place& place) {
  std::string out;
  while (true) {
    const std::size_t open = text.find('{');
    const std::size_t close = text.find('}', std::min(open, text.size()));
    out.append(text.substr(0, open));
    if (open == std::string_view::npos) return out;
    if (close != std::string_view::npos &&
        appendNamed(out, text.substr(open + 1, close - open - 1), place)) {
      text.remove_prefix(close + 1);
    } else {
      out.push_back('{');
      text.remove_prefix(open + 1);
    }
  }
}

}  // namespace

std::int64_t afterSteps(std::int64_t base, std::int64_t step, std::uint64_t times) noexcept {
  constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
  constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
  std::int64_t product = 0;
  std::int64_t sum = 0;
  if (__builtin_mul_overflow(step, times, &product)) return step < 0 ? kLowest : kHighest;
  if (__builtin_add_overflow(base, product, &sum)) return step < 0 ? kLowest : kHighest;
  return sum;
}

std::string Text::at(const Place& place) const {
  const std::string& text = byRefresh(values_, place.refresh);
  return text.find('{') == std::string::npos ? text : expanded(text, place);
}

std::size_t Text::longest(std::uint64_t items) const {
  std::size_t longest = 0;
  for (std::uint64_t refresh = 1; refresh <= values_.size(); ++refresh) {
    longest = std::max(longest, at({refresh, items, items}).size());
  }
  return longest;
}

}  // namespace tal::sim
