// Streams without a system behind them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "orv/Exception.h"
#include "orv/io/InputStreams.h"
#include "orv/io/OutputStreams.h"

namespace testing_support {

// Gives bytes in pieces of a chosen size.
class MemoryInputStream : public orv::io::InputStream {
 public:
  MemoryInputStream(std::string_view bytes, std::size_t pieceSize)
      : bytes_(bytes), pieceSize_(pieceSize) {}

  using InputStream::read;
  std::size_t read(char* buffer, std::size_t size) override {
    const std::size_t count = bytes_.copy(buffer, std::min(size, pieceSize_), next_);
    next_ += count;
    return count;
  }

 private:
  std::string bytes_;
  std::size_t pieceSize_;
  std::size_t next_ = 0;
};

// Keeps what each write handed over; a write after `failFrom` others fails.
class RecordingOutputStream : public orv::io::OutputStream {
 public:
  static constexpr std::size_t kNever = static_cast<std::size_t>(-1);

  explicit RecordingOutputStream(std::size_t failFrom = kNever) : failFrom_(failFrom) {}

  void write(std::string_view bytes) override {
    if (writes_.size() >= failFrom_) throw orv::io::IoException("the recording is full");
    writes_.emplace_back(bytes);
  }
  void close() noexcept override { ++closings_; }
  // From now on writes succeed.
  void recover() { failFrom_ = kNever; }

  [[nodiscard]] const std::vector<std::string>& writes() const { return writes_; }
  [[nodiscard]] int closings() const { return closings_; }

 private:
  std::size_t failFrom_;
  std::vector<std::string> writes_;
  int closings_ = 0;
};

}  // namespace testing_support
