// Where bytes come from.
#pragma once

#include <cstddef>

#include "orv/Object.h"

namespace orv::io {

class InputStream : public Object {
 public:
  // Reads at most `size` bytes; 0 at the end of the input. Throws ResultException.
  virtual std::size_t read(char* buffer, std::size_t size) = 0;

  // The next byte, 0 to 255, or -1 at the end of the input. Throws ResultException.
  int read();
};

}  // namespace orv::io
