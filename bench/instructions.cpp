#include "bench/instructions.h"

#include <fstream>
#include <stdexcept>

#include "bench/child.h"

namespace bench {

double instructionsOf(const std::vector<std::string>& command, const std::string& scratch) {
  std::vector<std::string> counted = {"/usr/bin/valgrind", "--tool=callgrind",
                                      "--log-file=/dev/null", "--callgrind-out-file=" + scratch};
  counted.insert(counted.end(), command.begin(), command.end());
  if (run(counted, Output::kDevNull).exitStatus != 0) {
    throw std::runtime_error("valgrind " + command.front() + " failed");
  }
  std::ifstream counts(scratch);
  const std::string kTotals = "totals: ";
  for (std::string line; std::getline(counts, line);) {
    if (line.starts_with(kTotals)) return std::stod(line.substr(kTotals.size()));
  }
  throw std::runtime_error("valgrind has counted nothing");
}

}  // namespace bench
