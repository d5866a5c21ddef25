// Between bytes and wide text. The text encoding is UTF-8; a byte that is not part of a valid
// sequence is carried as U+DC80 to U+DCFF and comes out as that byte again, so that any bytes
// survive the way in and out.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orv {

inline constexpr std::size_t kMaximumBytesPerCharacter = 4;

// Appends the decoded bytes to `text`. Unless `atEnd`, a sequence that may still be completed by
// later bytes is left alone. Returns the number of bytes decoded.
std::size_t decodeUtf8(std::string_view bytes, bool atEnd, std::wstring& text);

// Writes the bytes of one character to `out`, which has room for kMaximumBytesPerCharacter, and
// returns how many were written. What is no character becomes "?".
std::size_t encodeUtf8(wchar_t character, char* out) noexcept;

// The length of `bytes`, without a sequence that was cut off at the end.
std::size_t lengthOfWholeCharacters(std::string_view bytes) noexcept;

}  // namespace orv
