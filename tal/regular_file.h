// Files that users name.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>

namespace tal {

// The reason why a file cannot be used. what() continues the name of the file: "cannot be read:
// ...".
class FileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A regular file open for reading. It waits only for the disk: a pipe or a device is refused.
// Throws FileError.
class RegularFile {
 public:
  explicit RegularFile(const std::string& path);
  RegularFile(const RegularFile&) = delete;
  RegularFile& operator=(const RegularFile&) = delete;
  ~RegularFile();

  // Reads bytes from that place on, up to the end of the file; returns how many were read.
  [[nodiscard]] std::size_t readAt(std::uint64_t place, std::span<char> bytes) const;

 private:
  int descriptor_;
};

}  // namespace tal
