#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tal/sim/read_scenario.h"
#include "tests/support/temporary_folder.h"

namespace tal::sim {
namespace {

// The examples that a page marks as TOML.
std::vector<std::string> examplesIn(const std::string& page) {
  const std::string begin = "\n```toml\n";
  std::vector<std::string> examples;
  for (std::size_t at = page.find(begin); at != std::string::npos; at = page.find(begin, at)) {
    at += begin.size();
    examples.push_back(page.substr(at, page.find("```", at) - at));
  }
  return examples;
}

TEST(Documentation, ShowsScenariosThatCanBeRead) {
  const std::string page = testing_support::readFile(ZELK_SCENARIOS_PAGE);

  const std::vector<std::string> examples = examplesIn(page);

  EXPECT_EQ(examples.size(), 4U);
  for (const std::string& example : examples) {
    EXPECT_NO_THROW(parseScenario(example, "example")) << example;
  }
}

TEST(Documentation, ShowsTheMessageThatIsGiven) {
  const std::string page = testing_support::readFile(ZELK_SCENARIOS_PAGE);
  const std::string text = std::string(9, '\n') + "[[file]]\nname = ''\npage_size = -1\n";

  try {
    parseScenario(text, "big-shop.toml");
    FAIL();
  } catch (const ScenarioError& error) {
    EXPECT_NE(page.find(std::string("\nlibtal: ") + error.what() + "\n"), std::string::npos)
        << error.what();
  }
}

}  // namespace
}  // namespace tal::sim
