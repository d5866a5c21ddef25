// Text to bytes.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include "orv/Object.h"
#include "orv/String.h"
#include "orv/io/OutputStreams.h"

namespace orv::io {

// Collects text in the default encoding, UTF-8, and hands it to the stream when the buffer is full
// or flushed, always in whole characters. If a write fails, the buffer is kept, and the next flush
// tries again. The destructor does not write the buffer: its content is lost.
class OutputStreamWriter : public Object {
 public:
  // `bufferSize` in characters, at least 1.
  OutputStreamWriter(Reference<OutputStream> stream, std::size_t bufferSize);

  // All throw IoException.
  void write(std::string_view text) {
    if (text.size() > capacity_ - used_) text = writeUntilItFits(text);
    std::memcpy(buffer_.get() + used_, text.data(), text.size());
    used_ += text.size();
  }
  template <std::size_t kCount>
  void write(const Sum<kCount>& texts) {
    for (const std::string_view text : texts.texts) write(text);
  }
  void flush();
  void close() { stream_->close(); }

 private:
  // Writes whole characters until the rest fits into the buffer; returns the rest.
  std::string_view writeUntilItFits(std::string_view text);

  Reference<OutputStream> stream_;
  std::size_t capacity_;
  std::size_t used_ = 0;
  std::unique_ptr<char[]> buffer_;
};

// Every operation throws IoException when the stream cannot be written. A writer is used by one
// thread.
class PrintWriter : public Object {
 public:
  // With `autoFlush`, println hands its line to the system at once.
  PrintWriter(Reference<OutputStreamWriter> writer, bool autoFlush)
      : writer_(std::move(writer)), autoFlush_(autoFlush) {}

  // `text` is a String, a literal or a sum.
  template <class Text>
  void print(const Text& text) {
    writer_->write(summand(text));
  }
  template <class Text>
  void println(const Text& text) {
    print(text);
    println();
  }
  void println() {
    writer_->write("\n");
    if (autoFlush_) flush();
  }
  void flush() { writer_->flush(); }
  void close() { writer_->close(); }

 private:
  Reference<OutputStreamWriter> writer_;
  bool autoFlush_;
};

}  // namespace orv::io
