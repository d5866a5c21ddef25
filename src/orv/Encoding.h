// Conversion between bytes and wide text. The encoding is UTF-8. A byte that is not part of a valid
// sequence is kept as U+DC80 to U+DCFF and becomes the same byte again, so that any bytes survive
// both conversions.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orv {

inline constexpr std::size_t kMaximumBytesPerCharacter = 4;

constexpr bool isAscii(wchar_t character) noexcept { return character >= 0 && character < 0x80; }

// Appends the decoded bytes to `text`. Unless `atEnd`, a sequence that later bytes may complete is
// not decoded yet. Returns the number of bytes decoded.
std::size_t decodeUtf8(std::string_view bytes, bool atEnd, std::wstring& text);

// The number of characters.
std::size_t countCharacters(std::string_view bytes) noexcept;

// Where the character with this index begins; the length of `bytes` if there are not so many.
std::size_t offsetOfCharacter(std::string_view bytes, std::size_t index) noexcept;

std::string encodeUtf8(std::wstring_view text);

// Writes the bytes of one character to `out`, which has room for kMaximumBytesPerCharacter, and
// returns how many were written. A value that is not a character becomes "?".
std::size_t encodeUtf8(wchar_t character, char* out) noexcept;

// The length of `bytes`, without a sequence that was cut off at the end.
std::size_t lengthOfWholeCharacters(std::string_view bytes) noexcept;

}  // namespace orv
