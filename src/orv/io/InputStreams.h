// Where bytes come from.
#pragma once

#include <cstddef>

#include "orv/Object.h"
#include "orv/String.h"
#include "orv/io/FileDescriptor.h"

namespace orv::io {

class InputStream : public Object {
 public:
  // Reads at most `size` bytes; 0 at the end of the input. Throws ResultException.
  virtual std::size_t read(char* buffer, std::size_t size) = 0;

  // The next byte, 0 to 255, or -1 at the end of the input. Throws ResultException.
  int read();
};

// At most `largest` bytes can be read, because a device may give bytes without end. Reading more
// throws ResultException with kFileTooLarge.
class FileInputStream : public InputStream {
 public:
  static constexpr std::size_t kLargestFile = 64U << 20U;

  // kRegularFile refuses pipes and devices, and does not wait for a pipe's writer.
  enum Kind { kAnyFile, kRegularFile };

  // Throws ResultException if the path cannot be opened, is a folder or is refused.
  explicit FileInputStream(const String& path, std::size_t largest = kLargestFile,
                           Kind kind = kAnyFile);

  using InputStream::read;
  std::size_t read(char* buffer, std::size_t size) override;

  // True for a regular file that its group or others may read; a file of root may be read by its
  // group.
  [[nodiscard]] bool isReadableByOthers() const noexcept { return isReadableByOthers_; }

 private:
  FileDescriptor file_;
  bool isReadableByOthers_ = false;
  std::size_t bytesLeft_;
};

// Reads nothing ahead. A standard input that is closed or cannot be read counts as at its end.
class StdioInputStream : public InputStream {
 public:
  using InputStream::read;
  // Also returns 0 if a stop signal (orv/Process.h) has come, or comes while it waits.
  std::size_t read(char* buffer, std::size_t size) override;
};

}  // namespace orv::io
