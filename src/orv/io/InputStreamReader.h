// Bytes to text.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "orv/Object.h"
#include "orv/io/InputStream.h"

namespace orv::io {

// Decodes a stream in the default encoding. A byte-order mark at the start is dropped.
class InputStreamReader : public Object {
 public:
  // `bufferSize` in bytes, at least 4.
  InputStreamReader(Reference<InputStream> stream, std::size_t bufferSize);

  // Replaces `text` by the next characters, at most as many as the buffer has bytes; empty at the
  // end of the input. Throws ResultException.
  void read(std::wstring& text);

 private:
  Reference<InputStream> stream_;
  std::vector<char> buffer_;
  std::size_t pending_ = 0;  // bytes of an unfinished character at the buffer's start
  bool isAtStart_ = true;
};

}  // namespace orv::io
