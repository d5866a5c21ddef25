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

class FileInputStream : public InputStream {
 public:
  // Throws ResultException if the path cannot be opened or is a folder.
  explicit FileInputStream(const String& path);

  using InputStream::read;
  std::size_t read(char* buffer, std::size_t size) override;

 private:
  FileDescriptor file_;
};

// Nothing is read ahead. A standard input that is closed or cannot be read is at its end.
class StdioInputStream : public InputStream {
 public:
  using InputStream::read;
  // Also 0 when a stop signal (orv/Process.h) has come or comes while it waits.
  std::size_t read(char* buffer, std::size_t size) override;
};

}  // namespace orv::io
