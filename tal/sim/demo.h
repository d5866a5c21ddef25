// The built-in scenario.
#pragma once

#include <string_view>

namespace tal::sim {

// A small shop at work, in which every code of the interface occurs. Also what handle -1 serves.
extern const std::string_view kDemo;

}  // namespace tal::sim
