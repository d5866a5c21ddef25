// Sole owner of a file descriptor.
#pragma once

#include <unistd.h>

#include <utility>

namespace testing_support {

class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int number) : number_(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~FileDescriptor() { close(); }

  // -1 if nothing is open.
  [[nodiscard]] int number() const { return number_; }
  [[nodiscard]] bool isOpen() const { return number_ >= 0; }

  void close() {
    if (isOpen()) {
      ::close(std::exchange(number_, -1));
    }
  }

 private:
  int number_ = -1;
};

}  // namespace testing_support
