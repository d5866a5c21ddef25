#include "orv/util/StringTokenizer.h"

#include <utility>

namespace orv::util {

StringTokenizer::StringTokenizer(String text, wchar_t delimiter)
    : text_(std::move(text)), delimiter_(delimiter) {
  skipDelimiters();
}

String StringTokenizer::nextToken() {
  const std::size_t begin = next_;
  while (next_ < text_.length() && text_.charAt(next_) != delimiter_) ++next_;
  String token(text_.wide().substr(begin, next_ - begin));
  skipDelimiters();
  return token;
}

std::size_t StringTokenizer::countTokens() const {
  StringTokenizer rest(*this);
  std::size_t count = 0;
  for (; rest.hasMoreTokens(); ++count) rest.nextToken();
  return count;
}

void StringTokenizer::skipDelimiters() noexcept {
  while (next_ < text_.length() && text_.charAt(next_) == delimiter_) ++next_;
}

}  // namespace orv::util
