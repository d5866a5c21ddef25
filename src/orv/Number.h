// Numbers from text.
#pragma once

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
