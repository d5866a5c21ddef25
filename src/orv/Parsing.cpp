#include "orv/Parsing.h"

#include <charconv>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace orv {
namespace {

bool isDigit(char character) { return character >= '0' && character <= '9'; }

template <class Integer>
Integer parse(const String& text) {
  const std::string bytes = text.toBytes();
  std::string_view rest = bytes;
  if (rest.starts_with('+') && rest.size() > 1 && isDigit(rest[1])) rest.remove_prefix(1);
  Integer value = 0;
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
  const bool isWhole = error == std::errc() && end == rest.data() + rest.size();
  return isWhole ? value : 0;
}

}  // namespace

int Number::parseInt(const String& text) { return parse<int>(text); }

long Number::parseLong(const String& text) { return parse<long>(text); }

}  // namespace orv

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
