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
  // Overwrites the buffer, so that nothing that was read stays in memory.
  ~InputStreamReader() override;

  // Replaces `text` by the next characters, at most as many as the buffer has bytes. The text is
  // empty at the end of the input. Throws ResultException.
  void read(std::wstring& text);

 private:
  Reference<InputStream> stream_;
  std::vector<char> buffer_;
  std::size_t pending_ = 0;  // bytes of an unfinished character at the buffer's start
  bool isAtStart_ = true;
};

class BufferedReader : public Object {
 public:
  // The longest line that a configuration may have.
  static constexpr std::size_t kMaximumLineLength = 65536;

  explicit BufferedReader(Reference<InputStreamReader> reader,
                          std::size_t longestLine = kMaximumLineLength);
  // Leaves nothing of what was read in the buffer.
  ~BufferedReader() override;

  // Replaces `line` by the next line, without its line feed; returns false at the end of the input.
  // If a line is too long, only its first `longestLine` characters are read: isLineCut() is then
  // true, and the next call skips the rest. Throws ResultException.
  bool readLine(String& line);
  [[nodiscard]] bool isLineCut() const noexcept { return isLineCut_; }

  // Skips the rest of a cut line and returns whether it has the character. Throws ResultException.
  bool restOfLineHas(wchar_t character);

 private:
  bool fill();
  void skipRestOfLine();

  Reference<InputStreamReader> reader_;
  std::size_t longestLine_;
  std::wstring buffer_;
  std::size_t next_ = 0;
  bool isLineCut_ = false;
};

}  // namespace orv::io
