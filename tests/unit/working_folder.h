// Another current folder.
#pragma once

#include <filesystem>

namespace testing_support {

// Goes back to where the test was when it ends.
class WorkingFolder {
 public:
  explicit WorkingFolder(const std::filesystem::path& path) { std::filesystem::current_path(path); }
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;
  ~WorkingFolder() { std::filesystem::current_path(before_); }

 private:
  std::filesystem::path before_ = std::filesystem::current_path();
};

}  // namespace testing_support
