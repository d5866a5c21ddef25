// The text of a scenario as a tree of plain values that know their lines, and the errors in it.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tal::sim {

// Thrown while a scenario is read. what() is one line without control characters that says what is
// wrong and what was expected; the name of the scenario comes first when it is known.
class ScenarioError : public std::runtime_error {
 public:
  // The line counts from 1; 0 stands for the whole text.
  ScenarioError(int line, std::string_view problem);

  // The same problem, in the scenario of this name: "NAME:LINE: problem".
  [[nodiscard]] ScenarioError in(std::string_view name) const;

  [[nodiscard]] int line() const noexcept { return line_; }

 private:
  int line_;
};

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
