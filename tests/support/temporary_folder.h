// A folder for one test, which is removed with everything in it.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace testing_support {

class TemporaryFolder {
 public:
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  // The path of a file or folder in it, which need not exist.
  [[nodiscard]] std::filesystem::path operator/(const std::filesystem::path& name) const {
    return path_ / name;
  }

 private:
  std::filesystem::path path_;
};

// All bytes of a file. Throws std::runtime_error if it cannot be read.
std::string readFile(const std::filesystem::path& path);

// Replaces the file by these bytes. Throws std::runtime_error if it cannot be written.
void writeFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace testing_support
