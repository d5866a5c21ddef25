// Numbers and pieces of a text.
#pragma once

#include <cstddef>

#include "orv/String.h"

namespace orv {

// Reads an optional sign and decimal digits that fill the whole text. Returns 0 for anything else,
// and for a number that does not fit the type.
class Number {
 public:
  Number() = delete;
  static int parseInt(const String& text);
  static long parseLong(const String& text);
};

}  // namespace orv

namespace orv::util {

// The pieces of a text between delimiters. Delimiters and empty texts are not pieces.
class StringTokenizer {
 public:
  StringTokenizer(String text, wchar_t delimiter);

  [[nodiscard]] bool hasMoreTokens() const noexcept { return next_ < text_.length(); }
  // Call it only while there are more pieces; otherwise it returns an empty string.
  String nextToken();
  // How many are left.
  [[nodiscard]] std::size_t countTokens() const;

 private:
  void skipDelimiters() noexcept;

  String text_;
  wchar_t delimiter_;
  std::size_t next_ = 0;
};

}  // namespace orv::util
