#include "orv/Encoding.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace orv {
namespace {

constexpr wchar_t kFirstCarriedByte = 0xDC80;
constexpr wchar_t kLastCarriedByte = 0xDCFF;
constexpr wchar_t kByteCarrier = 0xDC00;

// What a lead byte announces: the length of the sequence (0: not a lead byte), the payload in the
// lead, and the range of the second byte. This range excludes overlong forms, surrogates and values
// above U+10FFFF.
struct Lead {
  std::size_t length;
  std::uint32_t payload;
  std::uint8_t secondLow;
  std::uint8_t secondHigh;
};

Lead leadOf(std::uint8_t byte) noexcept {
  if (byte >= 0xC2 && byte <= 0xDF) return {2, byte & 0x1FU, 0x80, 0xBF};
  if (byte == 0xE0) return {3, 0, 0xA0, 0xBF};
  if (byte == 0xED) return {3, 0x0D, 0x80, 0x9F};
  if (byte >= 0xE1 && byte <= 0xEF) return {3, byte & 0x0FU, 0x80, 0xBF};
  if (byte == 0xF0) return {4, 0, 0x90, 0xBF};
  if (byte >= 0xF1 && byte <= 0xF3) return {4, byte & 0x07U, 0x80, 0xBF};
  if (byte == 0xF4) return {4, 4, 0x80, 0x8F};
  return {0, 0, 0, 0};
}

bool continues(const Lead& lead, std::size_t index, std::uint8_t byte) noexcept {
  if (index == 1) return byte >= lead.secondLow && byte <= lead.secondHigh;
  return (byte & 0xC0U) == 0x80U;
}

// How many bytes from the start of `bytes` belong to the sequence of `lead`.
std::size_t validLength(const Lead& lead, std::string_view bytes) noexcept {
  std::size_t valid = 1;
  while (valid < lead.length && valid < bytes.size() &&
         continues(lead, valid, static_cast<std::uint8_t>(bytes[valid]))) {
    ++valid;
  }
  return valid;
}

bool isWhole(const Lead& lead, std::string_view bytes) noexcept {
  return lead.length != 0 && validLength(lead, bytes) == lead.length;
}

// How many bytes the first character takes.
std::size_t lengthOfFirst(std::string_view bytes) noexcept {
  const Lead lead = leadOf(static_cast<std::uint8_t>(bytes.front()));
  return isWhole(lead, bytes) ? lead.length : 1;
}

wchar_t characterOf(const Lead& lead, std::string_view bytes) noexcept {
  std::uint32_t value = lead.payload;
  for (std::size_t i = 1; i < lead.length; ++i) {
    value = (value << 6U) | (static_cast<std::uint8_t>(bytes[i]) & 0x3FU);
  }
  return static_cast<wchar_t>(value);
}

constexpr std::size_t kBlock = 8;

bool isAsciiBlock(const char* bytes) noexcept {
  std::uint64_t block = 0;
  std::memcpy(&block, bytes, kBlock);
  return (block & 0x8080808080808080U) == 0;
}

std::size_t lengthOfAscii(std::string_view bytes) noexcept {
  std::size_t length = 0;
  while (bytes.size() - length >= kBlock && isAsciiBlock(bytes.data() + length)) length += kBlock;
  while (length < bytes.size() && static_cast<std::uint8_t>(bytes[length]) < 0x80) ++length;
  return length;
}

std::size_t lengthOfAscii(std::wstring_view text) noexcept {
  return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isAscii) -
                                  text.begin());
}

// Bytes below 0x80 are characters of the same number, and the other way round.
template <class From, class To>
void appendAscii(std::basic_string_view<From> from, std::basic_string<To>& to) {
  const std::size_t before = to.size();
  to.resize(before + from.size());
  std::transform(from.begin(), from.end(), to.begin() + static_cast<std::ptrdiff_t>(before),
                 [](From character) { return static_cast<To>(character); });
}

}  // namespace

std::size_t decodeUtf8(std::string_view bytes, bool atEnd, std::wstring& text) {
  std::size_t at = 0;
  while (at < bytes.size()) {
    const std::size_t run = lengthOfAscii(bytes.substr(at));
    appendAscii(bytes.substr(at, run), text);
    at += run;
    if (at == bytes.size()) break;
    const auto byte = static_cast<std::uint8_t>(bytes[at]);
    const Lead lead = leadOf(byte);
    const std::string_view rest = bytes.substr(at);
    const std::size_t valid = validLength(lead, rest);
    if (lead.length != 0 && valid == lead.length) {
      text.push_back(characterOf(lead, rest));
      at += valid;
    } else if (lead.length != 0 && valid == rest.size() && !atEnd) {
      break;
    } else {
      text.push_back(static_cast<wchar_t>(kByteCarrier + byte));
      ++at;
    }
  }
  return at;
}

std::size_t countCharacters(std::string_view bytes) noexcept {
  std::size_t count = 0;
  while (true) {
    const std::size_t run = lengthOfAscii(bytes);
    count += run;
    bytes.remove_prefix(run);
    if (bytes.empty()) return count;
    bytes.remove_prefix(lengthOfFirst(bytes));
    ++count;
  }
}

std::size_t offsetOfCharacter(std::string_view bytes, std::size_t index) noexcept {
  std::size_t at = 0;
  for (; index > 0 && at < bytes.size(); --index) at += lengthOfFirst(bytes.substr(at));
  return at;
}

std::string encodeUtf8(std::wstring_view text) {
  std::string bytes;
  char encoded[kMaximumBytesPerCharacter];
  while (true) {
    const std::size_t run = lengthOfAscii(text);
    appendAscii(text.substr(0, run), bytes);
    text.remove_prefix(run);
    if (text.empty()) return bytes;
    bytes.append(encoded, encodeUtf8(text.front(), encoded));
    text.remove_prefix(1);
  }
}

std::size_t encodeUtf8(wchar_t character, char* out) noexcept {
  const std::uint32_t value = std::char_traits<wchar_t>::to_int_type(character);
  const auto put = [out](std::size_t index, std::uint32_t byte) {
    out[index] = static_cast<char>(static_cast<std::uint8_t>(byte));
  };
  const auto tail = [](std::uint32_t bits) { return 0x80U | (bits & 0x3FU); };
  if (value < 0x80) {
    put(0, value);
    return 1;
  }
  if (value < 0x800) {
    put(0, 0xC0U | (value >> 6U));
    put(1, tail(value));
    return 2;
  }
  if (character >= kFirstCarriedByte && character <= kLastCarriedByte) {
    put(0, value - static_cast<std::uint32_t>(kByteCarrier));
    return 1;
  }
  if ((value >= 0xD800 && value <= 0xDFFF) || value > 0x10FFFF) {
    put(0, U'?');
    return 1;
  }
  if (value < 0x10000) {
    put(0, 0xE0U | (value >> 12U));
    put(1, tail(value >> 6U));
    put(2, tail(value));
    return 3;
  }
  put(0, 0xF0U | (value >> 18U));
  put(1, tail(value >> 12U));
  put(2, tail(value >> 6U));
  put(3, tail(value));
  return 4;
}

std::size_t lengthOfWholeCharacters(std::string_view bytes) noexcept {
  const std::size_t farthest = bytes.size() < 3 ? bytes.size() : 3;
  for (std::size_t back = 1; back <= farthest; ++back) {
    const std::size_t at = bytes.size() - back;
    const auto byte = static_cast<std::uint8_t>(bytes[at]);
    if ((byte & 0xC0U) == 0x80U) continue;
    const Lead lead = leadOf(byte);
    const bool isCutOff = lead.length > back && validLength(lead, bytes.substr(at)) == back;
    return isCutOff ? at : bytes.size();
  }
  return bytes.size();
}

}  // namespace orv
