// Numbers, versions, times and the escaping of a character, each compared with the rule that it
// follows.
#include "util/Utils.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <string>

#include "tests/fuzz/lines.h"
#include "tests/fuzz/target.h"

namespace fuzzing {
namespace {

// Whether digits without leading zeros fit the type.
template <class Integer>
bool fits(std::string_view digits, bool isNegative) {
  using Limits = std::numeric_limits<Integer>;
  const std::string limit =
      isNegative ? std::to_string(Limits::min()).substr(1) : std::to_string(Limits::max());
  return digits.size() < limit.size() || (digits.size() == limit.size() && digits <= limit);
}

// What a text of a sign and digits stands for, 0 written as "0" alone.
template <class Integer>
std::optional<Integer> numberIn(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t begin = std::min(text.find_first_not_of(kBlanks), text.size());
  text = text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
  const bool isNegative = text.starts_with('-');
  std::string_view digits = text.substr(isNegative || text.starts_with('+') ? 1 : 0);
  if (digits.empty() || digits.find_first_not_of("0123456789") != digits.npos) return {};
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  if (digits.empty()) return text == "0" ? std::optional<Integer>(0) : std::nullopt;
  if (!fits<Integer>(digits, isNegative)) return {};
  return static_cast<Integer>(std::stoll((isNegative ? "-" : "") + std::string(digits)));
}

template <class Integer>
void requireParsed(std::string_view text, Integer (*parse)(const orv::String&)) {
  std::optional<Integer> parsed;
  try {
    parsed = parse(orv::String(text));
  } catch (const NumberFormatException& exception) {
    require(exception.getDescription().isEmpty(), "what is no number needs no description");
  }
  require(parsed == numberIn<Integer>(text), "a number is read as it is written");
}

void requireVersionPadded(std::string_view text) {
  orv::String version(text);
  Utils::formatEngVerString(version);
  std::string expected;
  std::string_view rest = text;
  for (const std::size_t width : {2U, 2U, 3U}) {
    const std::size_t length = orv::String(rest.substr(0, rest.find('.'))).length();
    if (length > 0) expected.append(width - std::min(width, length), '0');
    const bool isLast = rest.find('.') == std::string_view::npos;
    expected.append(takeUntil(rest, '.')).append(isLast ? "" : ".");
    if (isLast) break;
  }
  require(version.toBytes() == expected.append(rest), "a version is padded field by field");
}

void requireEscaped(std::string_view text, char character) {
  const orv::String original(text);
  orv::String escaped(original);
  Utils::addBackslashChars(escaped, character);
  std::wstring expected = original.wide();
  const auto wanted = static_cast<wchar_t>(static_cast<signed char>(character));
  for (std::size_t at = 0; at < original.length(); ++at) {
    if (expected[at] == wanted) expected.insert(at++, 1, L'\\');
  }
  require(escaped.wide() == expected, "a backslash stands before each");
}

// "2 days  03:04:05" adds up to the seconds again, of whatever sign.
void requireTime(long seconds) {
  const std::string text = Utils::convertTimeInSecs(seconds).toBytes();
  std::string_view rest = text;
  long sum = 0;
  const auto add = [&](std::string_view number, int unit) {
    if (number.starts_with("0-")) number.remove_prefix(1);
    long value = 0;
    const char* const end = number.data() + number.size();
    require(std::from_chars(number.data(), end, value).ptr == end, "a time has numbers");
    sum += value * unit;
  };
  add(takeUntil(rest, ' '), 86400);
  const std::string_view unit = takeUntil(rest, ' ');
  require(unit == (seconds >= 172800 ? "days" : "day"), "a time has its days");
  takeUntil(rest, ' ');
  add(takeUntil(rest, ':'), 3600);
  add(takeUntil(rest, ':'), 60);
  add(rest, 1);
  require(sum == seconds, "a time is as long as it was");
}

}  // namespace

void run(std::string_view input) {
  requireParsed<int>(input, Utils::parseInt);
  requireParsed<long>(input, Utils::parseLong);
  requireVersionPadded(input);
  requireEscaped(input, '\\');
  requireEscaped(input, '"');
  requireEscaped(input, '\xff');
  requireTime(numberIn<long>(input).value_or(0));
}

}  // namespace fuzzing
