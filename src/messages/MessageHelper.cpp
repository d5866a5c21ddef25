#include "messages/MessageHelper.h"

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <string_view>

#include "messages/CMSGStrings.h"
#include "orv/Encoding.h"
#include "orv/String.h"

namespace {

constexpr std::size_t kTextSize = 1024;
constexpr std::size_t kResultSize = 2048;

}  // namespace

orv::String MessageHelper::format(const char* key, std::span<const ArgumentKind> kinds, ...) const {
  orv::String found;
  CMSGStrings::MakeResourceString(bundle_, prefix_ + key, found);
  char text[kTextSize];
  orv::ORVUnicodeToAnsi(found, text, sizeof text);
  if (!conversionsFit(text, kinds)) return orv::String(std::string_view(text));

  char result[kResultSize];
  std::va_list arguments;
  va_start(arguments, kinds);
  const int length = std::vsnprintf(result, sizeof result, text, arguments);
  va_end(arguments);
  if (length < 0) return orv::String(std::string_view(text));
  std::string_view formatted(result);
  if (static_cast<std::size_t>(length) >= sizeof result) {
    formatted = formatted.substr(0, orv::lengthOfWholeCharacters(formatted));
  }
  return orv::String(formatted);
}
