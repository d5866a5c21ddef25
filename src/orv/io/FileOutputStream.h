// Bytes to a file.
#pragma once

#include "orv/io/FileDescriptor.h"
#include "orv/io/OutputStream.h"

namespace orv::io {

// Creates the file, or opens it: emptied unless `append`. Every write goes to the file's end, also
// when another program has emptied it meanwhile.
class FileOutputStream : public OutputStream {
 public:
  // Throws ResultException if the file cannot be opened.
  explicit FileOutputStream(const String& path, bool append = false);

  void write(std::string_view bytes) override;
  void close() override;

 private:
  String path_;
  FileDescriptor file_;
};

}  // namespace orv::io
