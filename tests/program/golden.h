// The runs in golden/, which golden_test.cpp describes.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace program_tests {

struct GoldenRun {
  explicit GoldenRun(std::string runName);

  // Copies the run's files and those of the folders above it; the nearest of each name counts.
  void copyTo(const std::filesystem::path& place) const;

  std::string name;  // the path below golden/, for instance "files/one/plain/json"
  std::filesystem::path folder;
};

// The names of all runs, sorted.
std::vector<std::string> goldenRuns();

}  // namespace program_tests
