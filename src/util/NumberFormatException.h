// A text that is no number.
#pragma once

#include "orv/Exception.h"

// Thrown by the parsers of Utils, without a description. Who parses decides what the text stands
// for instead; uncaught, it ends the run as orv::Exception does.
class NumberFormatException : public orv::Exception {
 public:
  using orv::Exception::Exception;
};
