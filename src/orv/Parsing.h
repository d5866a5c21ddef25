// Numbers and pieces of a text.
#pragma once

#include <cstddef>

#include "orv/String.h"

namespace orv {

// An optional sign and decimal digits that fill the whole text. Anything else, and what does not
// fit the type, yields 0.
class Number {
 public:
  Number() = delete;
  static int parseInt(const String& text);
  static long parseLong(const String& text);
};

}  // namespace orv

namespace orv::util {

// The pieces of a text between delimiters. Delimiters are not pieces, nor is what is empty.
class StringTokenizer {
 public:
  StringTokenizer(String text, wchar_t delimiter);

  [[nodiscard]] bool hasMoreTokens() const noexcept { return next_ < text_.length(); }
  // To be called only while there are more; gives an empty string otherwise.
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
