// The arguments, one on each line.
#include <string>
#include <vector>

#include "app/CommandLine.h"
#include "output/ProcessWide.h"
#include "tests/fuzz/lines.h"
#include "tests/fuzz/target.h"

namespace fuzzing {
namespace {

std::vector<std::string> argumentsIn(std::string_view input) {
  std::vector<std::string> arguments{"zelk"};
  for (const std::string_view line : split(input, '\n')) {
    arguments.emplace_back(line.substr(0, line.find('\0')));
  }
  return arguments;
}

}  // namespace

void run(std::string_view input) {
  std::vector<std::string> arguments = argumentsIn(input);
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  const auto count = static_cast<int>(pointers.size());
  pointers.push_back(nullptr);
  m_JSON = false;
  orv::String fileName;
  bool runOnce = false;

  const int result = parseArgs(count, pointers.data(), fileName, runOnce);

  const bool namesFile = count >= 3 && arguments[1] == "-f";
  const bool asksOnce = count >= 4 && arguments[3] == "-runonce";
  require((result == 0) == (namesFile && (count == 3 || asksOnce)), "the order is fixed");
  require(runOnce == (namesFile && asksOnce), "one run is asked for in the third place");
  require(!namesFile || fileName.toBytes() == arguments[2], "a file name is taken as it is");
}

}  // namespace fuzzing
