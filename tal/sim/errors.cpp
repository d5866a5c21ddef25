#include "tal/sim/errors.h"

#include "tal/text.h"

namespace tal::sim {
namespace {

// Keys and texts of a hostile file can be as long as the file.
constexpr std::size_t kLimit = 1000;

std::string oneLine(std::string text) {
  fitText(text, kLimit);
  return text;
}

}  // namespace

ScenarioError::ScenarioError(int line, std::string_view problem)
    : std::runtime_error(oneLine(std::string(problem))), line_(line) {}

ScenarioError ScenarioError::in(std::string_view name) const {
  std::string place(name);
  if (line_ > 0) place.append(":").append(std::to_string(line_));
  return {line_, place.append(": ").append(what())};
}

}  // namespace tal::sim
