// Files that users name.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>

namespace tal {

// Why a file cannot be used; what() goes behind its name: "cannot be read: ...".
class FileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A regular file open for reading. Nothing ever waits for anything but the disk: a pipe or a device
// is refused. Throws FileError.
class RegularFile {
 public:
  explicit RegularFile(const std::string& path);
  RegularFile(const RegularFile&) = delete;
  RegularFile& operator=(const RegularFile&) = delete;
  ~RegularFile();

  // Fills the bytes from that place on, as far as the file goes; returns how many those are.
  [[nodiscard]] std::size_t readAt(std::uint64_t place, std::span<char> bytes) const;

 private:
  int descriptor_;
};

}  // namespace tal
