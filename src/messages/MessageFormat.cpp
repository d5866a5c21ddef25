#include "messages/MessageFormat.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

namespace {

// The longest result, and widths that give the same result as any larger one: the padding of a
// number as wide as kWidest has more than kResult characters, however precise the number is.
constexpr std::size_t kResult = 2047;
constexpr std::size_t kMostPrecise = 2 * kResult;
constexpr std::size_t kWidest = 4 * kResult;

bool isDigit(char character) { return character >= '0' && character <= '9'; }

bool isOneOf(char character, std::string_view characters) {
  return characters.find(character) != std::string_view::npos;
}

struct Conversion {
  std::size_t position = 0;  // from 1; 0: the next argument
  std::string_view flags;
  std::size_t width = 0;
  std::optional<std::size_t> precision;
  std::string_view length;
  char letter = 0;
};

// Reads a conversion, from behind its percent sign.
class ConversionReader {
 public:
  explicit ConversionReader(std::string_view rest) : rest_(rest) {}

  std::optional<Conversion> read() {
    Conversion conversion;
    conversion.position = takePosition();
    conversion.flags = takeWhile([](char c) { return isOneOf(c, "-+ #0'"); });
    conversion.width = takeNumber();
    if (take('.')) conversion.precision = takeNumber();
    conversion.length = takeWhile([](char c) { return c == 'h'; });
    if (rest_.empty() || conversion.length.size() > 2) return {};
    conversion.letter = rest_.front();
    rest_.remove_prefix(1);
    return conversion;
  }

  [[nodiscard]] std::string_view rest() const { return rest_; }

 private:
  template <class Predicate>
  std::string_view takeWhile(Predicate wanted) {
    const auto end = std::find_if_not(rest_.begin(), rest_.end(), wanted);
    const std::string_view taken = rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
    rest_.remove_prefix(taken.size());
    return taken;
  }

  bool take(char character) {
    const bool isThere = rest_.starts_with(character);
    if (isThere) rest_.remove_prefix(1);
    return isThere;
  }

  std::size_t takeNumber() {
    std::size_t number = 0;
    for (const char digit : takeWhile(isDigit)) {
      number = std::min(number * 10 + static_cast<std::size_t>(digit - '0'), kWidest);
    }
    return number;
  }

  std::size_t takePosition() {
    const std::string_view before = rest_;
    const std::size_t number = takeNumber();
    if (number > 0 && take('$')) return number;
    rest_ = before;
    return 0;
  }

  std::string_view rest_;
};

bool fits(const Conversion& conversion, const MessageArgument& argument) {
  return std::holds_alternative<int>(argument)
             ? isOneOf(conversion.letter, "diuoxX") ||
                   (conversion.letter == 'c' && conversion.length.empty())
             : conversion.letter == 's' && conversion.length.empty();
}

std::string padded(const Conversion& conversion, std::string_view text) {
  const std::string_view shown = text.substr(0, conversion.precision.value_or(text.size()));
  const std::string padding(conversion.width - std::min(conversion.width, shown.size()), ' ');
  return isOneOf('-', conversion.flags) ? std::string(shown) + padding
                                        : padding + std::string(shown);
}

std::string formatted(const Conversion& conversion, int number) {
  std::string format = "%";
  format += conversion.flags;
  if (conversion.width > 0) format += std::to_string(conversion.width);
  if (conversion.precision) {
    format += '.';
    format += std::to_string(std::min(*conversion.precision, kMostPrecise));
  }
  format += conversion.length;
  format += conversion.letter;
  char result[kWidest + 1];
  const int length = std::snprintf(result, sizeof result, format.c_str(), number);
  return {result, static_cast<std::size_t>(std::max(length, 0))};
}

std::string filledIn(const Conversion& conversion, const MessageArgument& argument) {
  const int* const number = std::get_if<int>(&argument);
  return number != nullptr ? formatted(conversion, *number)
                           : padded(conversion, std::get<const char*>(argument));
}

// Which argument a conversion asks for: all of a text's conversions in order, or all by position.
class ArgumentOrder {
 public:
  // From 1; 0 if the text mixes the two.
  std::size_t indexOf(const Conversion& conversion) {
    (conversion.position == 0 ? inOrder_ : byPosition_)++;
    if (inOrder_ > 0 && byPosition_ > 0) return 0;
    return conversion.position == 0 ? inOrder_ : conversion.position;
  }

 private:
  std::size_t inOrder_ = 0;
  std::size_t byPosition_ = 0;
};

}  // namespace

std::optional<std::string> fillIn(std::string_view text,
                                  std::span<const MessageArgument> arguments) {
  std::string result;
  ArgumentOrder order;
  while (true) {
    const std::size_t percent = std::min(text.find('%'), text.size());
    result += text.substr(0, percent);
    if (percent == text.size()) return result;
    text.remove_prefix(percent + 1);
    if (text.starts_with('%')) {
      result += '%';
      text.remove_prefix(1);
      continue;
    }
    ConversionReader reader(text);
    const std::optional<Conversion> conversion = reader.read();
    const std::size_t index = conversion ? order.indexOf(*conversion) : 0;
    if (index == 0 || index > arguments.size()) return {};
    const MessageArgument& argument = arguments[index - 1];
    if (!fits(*conversion, argument)) return {};
    if (result.size() <= kResult) result += filledIn(*conversion, argument);
    text = reader.rest();
  }
}
