// Bytes to text.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "orv/Object.h"
#include "orv/String.h"
#include "orv/io/InputStreams.h"

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

class BufferedReader : public Object {
 public:
  // No line that the program has a use for is longer; one that is keeps its first characters.
  static constexpr std::size_t kMaximumLineLength = 65536;

  explicit BufferedReader(Reference<InputStreamReader> reader);

  // Replaces `line` by the next line, without its line feed; false at the end of the input. Of a
  // longer line only the first kMaximumLineLength characters are read: isLineCut() then tells so,
  // and the next call skips the rest. Throws ResultException.
  bool readLine(String& line);
  [[nodiscard]] bool isLineCut() const noexcept { return isLineCut_; }

  // Skips the rest of a cut line and tells whether it has the character; also true for a line that
  // does not end within kMaximumSkip more characters. Throws ResultException.
  bool restOfLineHas(wchar_t character);
  static constexpr std::size_t kMaximumSkip = 1U << 26U;

 private:
  bool fill();
  void skipRestOfLine();

  Reference<InputStreamReader> reader_;
  std::wstring buffer_;
  std::size_t next_ = 0;
  bool isLineCut_ = false;
};

}  // namespace orv::io
