// How a failed expectation shows the program's types. To be included by every test that compares
// them.
#pragma once

#include <ostream>

#include "orv/String.h"

namespace orv {

inline void PrintTo(const String& text, std::ostream* out) { *out << '"' << text.toBytes() << '"'; }

}  // namespace orv
