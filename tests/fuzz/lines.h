// Inputs as lines and cells, so that seeds can be read and written by hand.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace fuzzing {

// The text before the first `separator`, which is removed from the input with it.
inline std::string_view takeUntil(std::string_view& input, char separator) {
  const std::string_view taken = input.substr(0, input.find(separator));
  input.remove_prefix(std::min(taken.size() + 1, input.size()));
  return taken;
}

inline std::string_view takeLine(std::string_view& input) { return takeUntil(input, '\n'); }

// The pieces between separators; none of an empty text.
inline std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  while (!text.empty()) pieces.push_back(takeUntil(text, separator));
  return pieces;
}

}  // namespace fuzzing
