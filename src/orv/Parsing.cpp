#include "orv/Parsing.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>

namespace orv {
namespace {

bool isDigit(char character) { return character >= '0' && character <= '9'; }

template <class Integer>
Integer parse(const String& text) {
  std::string_view rest = text.toBytes();
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

StringTokenizer::StringTokenizer(const String& text, char delimiter)
    : text_(text.toBytes()), delimiter_(delimiter) {
  skipDelimiters();
}

String StringTokenizer::nextToken() {
  const std::size_t begin = next_;
  next_ = std::min(text_.find(delimiter_, begin), text_.size());
  String token(text_.substr(begin, next_ - begin));
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
  next_ = std::min(text_.find_first_not_of(delimiter_, next_), text_.size());
}

}  // namespace orv::util
