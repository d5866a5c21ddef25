// The keys that the user types.
#pragma once

// After more than this many bytes that no keyboard sends, the program stops reading its input.
inline constexpr int kToleratedBadBytes = 25;

// True if `byte` is the letter in upper or lower case. -1, the end of the input, is not a letter.
constexpr bool isKey(int byte, char upperCase) noexcept {
  constexpr int kCaseBit = 0x20;
  return (byte & ~kCaseBit) == upperCase;
}

// True for a byte that a keyboard sends: not 0, not above 127, and not the end of the input.
constexpr bool isTyped(int byte) noexcept { return byte >= 1 && byte <= 127; }
