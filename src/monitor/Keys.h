// What the user types.
#pragma once

// After more than this many bytes that no keyboard sends, the input is given up.
inline constexpr int kToleratedBadBytes = 25;

// True if `byte` is the letter in upper or lower case. -1, the end of the input, is no letter.
constexpr bool isKey(int byte, char upperCase) noexcept {
  constexpr int kCaseBit = 0x20;
  return (byte & ~kCaseBit) == upperCase;
}

// A byte as typed on a keyboard; neither 0, nor above 127, nor the end of the input.
constexpr bool isTyped(int byte) noexcept { return byte >= 1 && byte <= 127; }
