// Numbers and pieces of a text.
#pragma once

#include <cstddef>
#include <string>

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
  // `delimiter` is ASCII.
  StringTokenizer(const String& text, char delimiter);

  [[nodiscard]] bool hasMoreTokens() const noexcept { return next_ < text_.size(); }
  // Call it only while there are more pieces; otherwise it returns an empty string.
  String nextToken();
  // How many are left.
  [[nodiscard]] std::size_t countTokens() const;

 private:
  void skipDelimiters() noexcept;

  std::string text_;
  char delimiter_;
  std::size_t next_ = 0;
};

}  // namespace orv::util
