#include "tal/sim/load.h"

#include "tal/regular_file.h"
#include "tal/sim/errors.h"

namespace tal::sim {

std::string readFile(const std::string& path) {
  try {
    std::string text(kFileLimit + 1, '\0');
    text.resize(RegularFile(path).readAt(0, text));
    if (text.size() <= kFileLimit) return text;
  } catch (const FileError& error) {
    throw ScenarioError(0, error.what());
  }
  throw ScenarioError(0, "is larger than " + std::to_string(kFileLimit) + " bytes");
}

}  // namespace tal::sim
