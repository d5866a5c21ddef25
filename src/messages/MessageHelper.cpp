#include "messages/MessageHelper.h"

#include <cstddef>
#include <string>
#include <string_view>

#include "messages/CMSGStrings.h"
#include "orv/Encoding.h"

namespace {

constexpr std::size_t kTextSize = 1024;
constexpr std::size_t kLongestResult = 2047;

// The text as far as a C string shows it, without an incomplete character at the end.
std::string_view cut(std::string_view result) {
  result = result.substr(0, result.find('\0'));
  if (result.size() <= kLongestResult) return result;
  result = result.substr(0, kLongestResult);
  return result.substr(0, orv::lengthOfWholeCharacters(result));
}

}  // namespace

orv::String MessageHelper::format(const char* key,
                                  std::span<const MessageArgument> arguments) const {
  orv::String found;
  CMSGStrings::MakeResourceString(bundle_, prefix_ + key, found);
  char text[kTextSize];
  orv::ORVUnicodeToAnsi(found, text, sizeof text);
  const std::string result = fillIn(text, arguments).value_or(text);
  return orv::String(cut(result));
}
