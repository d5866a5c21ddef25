// Bytes to standard output or standard error.
#pragma once

#include "orv/io/OutputStream.h"

namespace orv::io {

// Standard output, or through getStdErrorStream() standard error. Closing it leaves the process's
// stream open.
class StdioOutputStream : public OutputStream {
 public:
  StdioOutputStream();
  static Reference<StdioOutputStream> getStdErrorStream();

  void write(std::string_view bytes) override;
  void close() override {}

 private:
  template <class T, class... Arguments>
  friend Reference<T> orv::makeReference(Arguments&&... arguments);
  StdioOutputStream(int descriptor, const char* name);

  int descriptor_;
  String name_;
};

}  // namespace orv::io
