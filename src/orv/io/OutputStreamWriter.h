// Text to bytes.
#pragma once

#include <cstddef>
#include <memory>

#include "orv/Object.h"
#include "orv/String.h"
#include "orv/io/OutputStream.h"

namespace orv::io {

// Encodes text in the default encoding into a buffer and hands it to the stream when the buffer is
// full or flushed. What is buffered when a write fails, or when the writer is destroyed, is lost.
class OutputStreamWriter : public Object {
 public:
  // `bufferSize` in characters, at least 1.
  OutputStreamWriter(Reference<OutputStream> stream, std::size_t bufferSize);

  // All throw IoException.
  void write(const String& text);
  void write(wchar_t character);
  void flush();
  void close() { stream_->close(); }

 private:
  Reference<OutputStream> stream_;
  std::size_t capacity_;
  std::size_t used_ = 0;
  std::unique_ptr<char[]> buffer_;
};

}  // namespace orv::io
