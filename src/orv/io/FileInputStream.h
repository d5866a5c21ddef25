// Bytes of a file.
#pragma once

#include "orv/String.h"
#include "orv/io/FileDescriptor.h"
#include "orv/io/InputStream.h"

namespace orv::io {

class FileInputStream : public InputStream {
 public:
  // Throws ResultException if the path cannot be opened or is a folder.
  explicit FileInputStream(const String& path);

  using InputStream::read;
  std::size_t read(char* buffer, std::size_t size) override;

 private:
  FileDescriptor file_;
};

}  // namespace orv::io
