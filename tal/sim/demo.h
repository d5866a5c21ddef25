// The built-in scenario.
#pragma once

namespace tal::sim {

// The text of demo.toml: a small shop at work, in which every code of the interface occurs. Handle
// -1 serves it too.
extern const char kDemo[];

}  // namespace tal::sim
