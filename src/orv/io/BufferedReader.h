// Text, line by line.
#pragma once

#include <cstddef>
#include <string>

#include "orv/Object.h"
#include "orv/String.h"
#include "orv/io/InputStreamReader.h"

namespace orv::io {

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
