#include "tests/fuzz/fuzzed_engine.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "tests/fuzz/lines.h"
#include "tests/fuzz/target.h"

namespace fuzzing {
namespace {

std::optional<char> byteNamed(std::string_view digits) {
  unsigned byte = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, byte, 16);
  if (digits.size() != 2 || error != std::errc() || stop != end) return {};
  return static_cast<char>(static_cast<unsigned char>(byte));
}

std::string unescaped(std::string_view text) {
  std::string bytes;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto named = text[at] == '\\' ? byteNamed(text.substr(at + 1, 2)) : std::optional<char>();
    bytes.push_back(named.value_or(text[at]));
    if (named) at += 2;
  }
  return bytes;
}

std::int16_t statusOf(char letter, std::string_view number) {
  switch (letter) {
    case 'N':
      return TAL_STATUS_NO_ENTRY;
    case 'G':
      return TAL_STATUS_CLIENT_GONE;
    case 'C':
      return TAL_STATUS_FILE_CLOSED;
    case 'E':
      return static_cast<std::int16_t>(numberIn(number, -1));
    default:
      return 0;
  }
}

}  // namespace

FuzzedEngine& engine() {
  static FuzzedEngine s_engine("");
  return s_engine;
}

Answer FuzzedEngine::next() {
  ++calls;
  const std::string_view line = takeLine(script_);
  if (line.empty()) return {};
  return {statusOf(line.front(), line.substr(1)), unescaped(line.substr(1))};
}

Answer FuzzedEngine::nextEntry() {
  if (script_.empty()) return {TAL_STATUS_NO_ENTRY, {}};
  return next();
}

void fill(std::span<char> out, std::string_view bytes) {
  const bool isRepeated = bytes.size() > 1 && bytes.front() == '*';
  if (isRepeated) bytes.remove_prefix(1);
  const std::size_t length = isRepeated ? out.size() : std::min(out.size(), bytes.size());
  for (std::size_t at = 0; at < length; ++at) out[at] = bytes[at % bytes.size()];
}

std::int64_t numberIn(std::string_view bytes, std::int64_t otherwise) {
  std::int64_t number = otherwise;
  std::from_chars(bytes.data(), bytes.data() + bytes.size(), number);
  return number;
}

}  // namespace fuzzing
