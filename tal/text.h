// Texts on their way into a field of the interface.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace tal {

// Whether a byte by itself is a control character.
constexpr bool isControl(char byte) noexcept {
  return (byte >= '\0' && byte < ' ') || byte == '\x7f';
}

// Bytes of the UTF-8 character that the text begins with; 1 where its bytes are not UTF-8. The text
// must not be empty.
std::size_t characterLength(std::string_view text) noexcept;

// What every text undergoes, so that no name can break a line of a report or drive a terminal:
// - these characters become "?": control characters (below U+0020, U+007F to U+009F), those that
//   turn the direction of text (U+202A to U+202E, U+2066 to U+2069), separate lines (U+2028,
//   U+2029) or have no width (U+200B, U+FEFF);
// - so do the bytes 0x80 to 0x9F where they are not part of UTF-8: to some terminals they are
//   control characters; all other bytes that are not UTF-8 stay as they are;
// - what exceeds the field is cut off before a whole character.

// Writes `text` into `field` and closes it with a NUL; returns the length without the NUL. The
// field must not be empty.
std::size_t putText(std::span<char> field, std::string_view text) noexcept;

// The same in place, for a field of `limit` bytes and its NUL.
void fitText(std::string& text, std::size_t limit) noexcept;

}  // namespace tal
