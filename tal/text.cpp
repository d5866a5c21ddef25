#include "tal/text.h"

#include <algorithm>
#include <cstring>

namespace tal {
namespace {

unsigned char byteAt(std::string_view text, std::size_t at) noexcept {
  return static_cast<unsigned char>(text[at]);
}

std::size_t announcedLength(unsigned char lead) noexcept {
  if (lead >= 0xc2 && lead <= 0xdf) return 2;
  if (lead >= 0xe0 && lead <= 0xef) return 3;
  if (lead >= 0xf0 && lead <= 0xf4) return 4;
  return 1;
}

// Whether the second byte of a character may follow the first: the character must not be overlong,
// a surrogate or above the last character.
bool mayFollow(unsigned char lead, unsigned char second) noexcept {
  if (lead == 0xe0) return second >= 0xa0;
  if (lead == 0xed) return second <= 0x9f;
  if (lead == 0xf0) return second >= 0x90;
  if (lead == 0xf4) return second <= 0x8f;
  return true;
}

// The code point of a character of several bytes, or the value of a single byte.
char32_t codePointOf(std::string_view character) noexcept {
  if (character.size() == 1) return byteAt(character, 0);
  char32_t point = byteAt(character, 0) & (0x7fU >> character.size());
  for (std::size_t at = 1; at < character.size(); ++at) {
    point = (point << 6) | (byteAt(character, at) & 0x3fU);
  }
  return point;
}

struct Range {
  char32_t first;
  char32_t last;
};

constexpr Range kReplaced[] = {
    {0x0000, 0x001f},
    {0x007f, 0x009f},
    {0x200b, 0x200b},
    {0x2028, 0x202e},
    {0x2066, 0x2069},
    {0xfeff, 0xfeff},
};

bool isPlain(char byte) noexcept { return byte >= ' ' && byte <= '~'; }

bool isReplaced(std::string_view character) noexcept {
  const char32_t point = codePointOf(character);
  return std::ranges::any_of(
      kReplaced, [&](const Range& range) { return range.first <= point && point <= range.last; });
}

// How many characters at the start of the text are single bytes that stay as they are.
std::size_t lengthOfPlain(std::string_view text) noexcept {
  const auto isPlain = [](char byte) { return byte >= ' ' && byte < '\x7f'; };
  return static_cast<std::size_t>(std::ranges::find_if_not(text, isPlain) - text.begin());
}

// `out` may be the start of `text`: writing never overtakes reading.
std::size_t write(char* out, std::size_t limit, std::string_view text) noexcept {
  std::size_t length = std::min(lengthOfPlain(text), limit);
  std::memmove(out, text.data(), length);
  text.remove_prefix(length);
  while (!text.empty()) {
    // Nearly every byte is one of these.
    while (length < limit && !text.empty() && isPlain(text.front())) {
      out[length++] = text.front();
      text.remove_prefix(1);
    }
    if (text.empty()) break;
    const std::string_view character = text.substr(0, characterLength(text));
    const bool replaced = isReplaced(character);
    const std::size_t width = replaced ? 1 : character.size();
    if (length + width > limit) break;
    if (replaced) {
      out[length] = '?';
    } else {
      std::copy(character.begin(), character.end(), out + length);
    }
    length += width;
    text.remove_prefix(character.size());
  }
  return length;
}

}  // namespace

std::size_t characterLength(std::string_view text) noexcept {
  const unsigned char lead = byteAt(text, 0);
  const std::size_t length = announcedLength(lead);
  if (length > text.size()) return 1;
  for (std::size_t at = 1; at < length; ++at) {
    if ((byteAt(text, at) & 0xc0) != 0x80) return 1;
  }
  return length == 1 || mayFollow(lead, byteAt(text, 1)) ? length : 1;
}

std::size_t putText(std::span<char> field, std::string_view text) noexcept {
  const std::size_t length = write(field.data(), field.size() - 1, text);
  field[length] = '\0';
  return length;
}

void fitText(std::string& text, std::size_t limit) noexcept {
  text.resize(write(text.data(), limit, text));
}

}  // namespace tal
