#include "tests/program/golden.h"

#include <algorithm>

#include "tests/support/temporary_folder.h"

namespace program_tests {

using testing_support::readFile;
using testing_support::writeFile;

namespace {

namespace fs = std::filesystem;

const fs::path kRoot = GOLDEN_FOLDER;

bool hasFolders(const fs::path& folder) {
  return std::any_of(fs::directory_iterator(folder), fs::directory_iterator(),
                     [](const auto& entry) { return entry.is_directory(); });
}

}  // namespace

GoldenRun::GoldenRun(std::string runName) : name(std::move(runName)), folder(kRoot / name) {}

void GoldenRun::copyTo(const fs::path& place) const {
  fs::create_directories(place);
  fs::path from = kRoot;
  for (const fs::path& part : fs::path(name)) {
    from /= part;
    for (const auto& file : fs::directory_iterator(from)) {
      if (file.is_directory()) continue;
      fs::copy_file(file, place / file.path().filename(), fs::copy_options::overwrite_existing);
    }
  }
  if (fs::exists(place / "faults.toml")) {
    writeFile(place / "scenario.toml",
              readFile(place / "scenario.toml") + "\n" + readFile(place / "faults.toml"));
  }
}

std::vector<std::string> goldenRuns() {
  std::vector<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(kRoot)) {
    if (entry.is_directory() && !hasFolders(entry)) {
      names.push_back(entry.path().lexically_relative(kRoot));
    }
  }
  std::ranges::sort(names);
  return names;
}

}  // namespace program_tests
