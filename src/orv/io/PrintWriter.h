// Lines of text to a stream.
#pragma once

#include <utility>

#include "orv/Object.h"
#include "orv/String.h"
#include "orv/io/OutputStreamWriter.h"

namespace orv::io {

// Every operation throws IoException when the stream cannot be written. A writer serves one thread.
class PrintWriter : public Object {
 public:
  // With `autoFlush`, println hands its line to the system at once.
  PrintWriter(Reference<OutputStreamWriter> writer, bool autoFlush)
      : writer_(std::move(writer)), autoFlush_(autoFlush) {}

  void print(const String& text) { writer_->write(text); }
  void println(const String& text = {});
  void flush() { writer_->flush(); }
  void close() { writer_->close(); }

 private:
  Reference<OutputStreamWriter> writer_;
  bool autoFlush_;
};

}  // namespace orv::io
