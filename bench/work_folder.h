// A folder for the files of one run.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

namespace bench {

// Removed with all that is in it.
class WorkFolder {
 public:
  WorkFolder()
      : path_(std::filesystem::temp_directory_path() / ("zelk-bench-" + std::to_string(getpid()))) {
    std::filesystem::create_directory(path_);
  }
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;
  ~WorkFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] std::string file(const std::string& name) const { return path_ / name; }

  // Returns the file's path.
  std::string write(const std::string& name, const std::string& text) const {
    std::ofstream(file(name), std::ios::binary) << text;
    return file(name);
  }

 private:
  std::filesystem::path path_;
};

}  // namespace bench
