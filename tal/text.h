// Cleaning and cutting texts for a field of the interface.
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

// The number of bytes of the first UTF-8 character of the text; 1 if its bytes are not UTF-8. The
// text must not be empty.
std::size_t characterLength(std::string_view text) noexcept;

// Every text is cleaned as follows, so that no name can break a line of a report or control a
// terminal:
// - these characters become "?": control characters (below U+0020, U+007F to U+009F), those that
//   change the direction of text (U+202A to U+202E, U+2066 to U+2069), separate lines (U+2028,
//   U+2029) or have no width (U+200B, U+FEFF);
// - so do the bytes 0x80 to 0x9F if they are not part of UTF-8, because some terminals take them as
//   control characters; all other bytes that are not UTF-8 stay unchanged;
// - a text that is too long for the field is cut after a whole character.

// Writes `text` into `field` and closes it with a NUL; returns the length without the NUL. The
// field must not be empty.
std::size_t putText(std::span<char> field, std::string_view text) noexcept;

// The same in place, for a field of `limit` bytes and its NUL.
void fitText(std::string& text, std::size_t limit) noexcept;

}  // namespace tal
