// The built-in scenario.
#pragma once

namespace tal::sim {

// A small shop at work, in which every code of the interface occurs. Also what handle -1 serves.
// The text of demo.toml.
extern const char kDemo[];

}  // namespace tal::sim
