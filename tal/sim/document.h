// A TOML text as a tree of plain values that know their lines.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tal::sim {

struct Member;

// A value of the document.
struct Node {
  using List = std::vector<Node>;
  using Table = std::vector<Member>;  // in the order of the lines
  // A value that no scenario uses: a boolean, a fraction or a date.
  struct Other {};

  int line = 0;
  std::variant<Other, std::int64_t, std::string, List, Table> value;
};

// A key with its value.
struct Member {
  std::string key;
  int line = 0;
  Node node;
};

// The root table. Throws ScenarioError if the text is not TOML or is nested too deeply. Any bytes
// may be given.
Node parseDocument(std::string_view text);

}  // namespace tal::sim
