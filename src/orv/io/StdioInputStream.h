// Bytes of standard input.
#pragma once

#include "orv/io/InputStream.h"

namespace orv::io {

// Nothing is read ahead. A standard input that is closed or cannot be read is at its end.
class StdioInputStream : public InputStream {
 public:
  using InputStream::read;
  // Also 0 when a stop signal (orv/StopSignals.h) has come or comes while it waits.
  std::size_t read(char* buffer, std::size_t size) override;
};

}  // namespace orv::io
