// Errors in a scenario.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

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

}  // namespace tal::sim
