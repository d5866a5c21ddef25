// The operating system's files, as the streams use them.
#pragma once

#include <cstddef>
#include <string_view>

#include "orv/String.h"

namespace orv::io {

// Writes all bytes; continues after interruptions and short writes. Throws IoException with the
// text of setWriteErrorText, where `target` names the file or stream.
void writeFully(int descriptor, std::string_view bytes, const String& target);

// What writeFully throws; `error` is an errno.
[[noreturn]] void throwWriteError(const String& target, int error);

// Reads at most `size` bytes; 0 at the end of the input. Continues after interruptions. Throws
// ResultException.
std::size_t readSome(int descriptor, char* buffer, std::size_t size);

// Owns a descriptor.
class FileDescriptor {
 public:
  explicit FileDescriptor(int descriptor) noexcept : descriptor_(descriptor) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() { close(); }

  [[nodiscard]] int get() const noexcept { return descriptor_; }
  // Returns 0 or the errno of a failure; the descriptor is closed in either case.
  int close() noexcept;

 private:
  int descriptor_;
};

}  // namespace orv::io
