#include "tal/recording/text.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>

#include "tal/text.h"

namespace tal::recording {
namespace {

constexpr std::size_t kEscapeLength = 5;  // "{xHH}"
constexpr std::int64_t kMicroseconds = 1'000'000;
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

// The byte that the text names if it begins with "{xHH}".
std::optional<char> escapedByte(std::string_view text) {
  if (text.size() < kEscapeLength || !text.starts_with("{x") || text[4] != '}') return std::nullopt;
  unsigned byte = 0;
  const auto [stop, error] = std::from_chars(text.data() + 2, text.data() + 4, byte, 16);
  if (error != std::errc() || stop != text.data() + 4) return std::nullopt;
  return static_cast<char>(byte);
}

void appendByte(std::string& out, char byte) {
  const auto number = static_cast<unsigned char>(byte);
  out.append("{x").append(1, kHexDigits[number >> 4U]).append(1, kHexDigits[number & 15U]) += '}';
}

void appendControl(std::string& out, char control) {
  switch (control) {
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '\t':
      out += "\\t";
      return;
    default:
      break;
  }
  const auto number = static_cast<unsigned char>(control);
  out.append("\\u00").append(1, kHexDigits[number >> 4U]).append(1, kHexDigits[number & 15U]);
}

// Whether a byte is written unchanged in every place.
constexpr bool isPlain(char byte) {
  return byte >= ' ' && byte != '"' && byte != '\\' && byte != '{' && byte != '\x7f';
}

// Removes from the start of `text` a number of exactly so many digits and the `end` after it.
// Returns the number, or -1 if the text does not begin so.
int takeNumber(std::string_view& text, std::size_t digits, std::string_view end) {
  int number = 0;
  if (text.size() < digits + end.size()) return -1;
  for (std::size_t at = 0; at < digits; ++at) {
    if (text[at] < '0' || text[at] > '9') return -1;
    number = number * 10 + (text[at] - '0');
  }
  text.remove_prefix(digits);
  if (!text.starts_with(end)) return -1;
  text.remove_prefix(end.size());
  return number;
}

// Microseconds of ".123456Z" or "Z", which must be all of the text.
std::optional<std::int64_t> fractionOf(std::string_view text) {
  if (text == "Z") return 0;
  if (!text.starts_with('.') || !text.ends_with('Z')) return std::nullopt;
  const std::string_view digits = text.substr(1, text.size() - 2);
  constexpr std::size_t kMostDigits = 6;
  if (digits.empty() || digits.size() > kMostDigits) return std::nullopt;
  std::int64_t fraction = 0;
  for (std::size_t at = 0; at < kMostDigits; ++at) {
    const char digit = at < digits.size() ? digits[at] : '0';
    if (digit < '0' || digit > '9') return std::nullopt;
    fraction = fraction * 10 + (digit - '0');
  }
  return fraction;
}

}  // namespace

void appendText(std::string& out, std::string_view text) {
  out += '"';
  while (!text.empty()) {
    std::size_t plain = 0;
    while (plain < text.size() && isPlain(text[plain])) ++plain;
    out.append(text.substr(0, plain));
    text.remove_prefix(plain);
    if (text.empty()) break;
    const char next = text.front();
    const std::size_t length = characterLength(text);
    if (length > 1) {
      out.append(text.substr(0, length));
    } else if (next == '{') {
      if (escapedByte(text)) {
        appendByte(out, next);
      } else {
        out += next;
      }
    } else if (next == '"' || next == '\\') {
      out.append(1, '\\') += next;
    } else if (isControl(next)) {
      appendControl(out, next);
    } else {
      appendByte(out, next);
    }
    text.remove_prefix(length);
  }
  out += '"';
}

std::string textOf(std::string_view recorded) {
  std::string text;
  for (std::size_t open = recorded.find('{'); open != std::string_view::npos;
       open = recorded.find('{')) {
    text.append(recorded.substr(0, open));
    recorded.remove_prefix(open);
    const std::optional<char> byte = escapedByte(recorded);
    text += byte.value_or('{');
    recorded.remove_prefix(byte ? kEscapeLength : 1);
  }
  return text.append(recorded);
}

std::string timeText(std::int64_t microseconds) {
  using namespace std::chrono;
  const sys_time<std::chrono::microseconds> time{std::chrono::microseconds(microseconds)};
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(time - day);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%06dZ",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()),
                static_cast<int>(clock.subseconds().count()));
  return text.data();
}

std::optional<std::int64_t> timeOf(std::string_view text) {
  using namespace std::chrono;
  const int year = takeNumber(text, 4, "-");
  const int month = takeNumber(text, 2, "-");
  const int day = takeNumber(text, 2, "T");
  const int hour = takeNumber(text, 2, ":");
  const int minute = takeNumber(text, 2, ":");
  const int second = takeNumber(text, 2, "");
  const std::optional<std::int64_t> fraction = fractionOf(text);
  if (year < 0 || month < 0 || day < 0 || hour < 0 || minute < 0 || second < 0 || !fraction) {
    return std::nullopt;
  }
  const year_month_day date{std::chrono::year(year), std::chrono::month(unsigned(month)),
                            std::chrono::day(unsigned(day))};
  constexpr int kLeapSecond = 60;
  if (!date.ok() || hour > 23 || minute > 59 || second > kLeapSecond) return std::nullopt;
  const auto time =
      sys_days(date).time_since_epoch() + hours(hour) + minutes(minute) + seconds(second);
  return duration_cast<seconds>(time).count() * kMicroseconds + *fraction;
}

std::string zoneText(std::int32_t minutes) {
  const int size = minutes < 0 ? -minutes : minutes;
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%c%02d:%02d", minutes < 0 ? '-' : '+', size / 60,
                size % 60);
  return text.data();
}

std::optional<std::int32_t> zoneOf(std::string_view text) {
  if (!text.starts_with('+') && !text.starts_with('-')) return std::nullopt;
  const bool isBehind = text.starts_with('-');
  text.remove_prefix(1);
  const int hours = takeNumber(text, 2, ":");
  const int minutes = takeNumber(text, 2, "");
  if (hours < 0 || minutes < 0 || minutes > 59 || !text.empty()) return std::nullopt;
  return (isBehind ? -1 : 1) * (hours * 60 + minutes);
}

}  // namespace tal::recording
