#include "orv/String.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>

#include "orv/Encoding.h"

namespace orv {
namespace {

char upper(char character) noexcept {
  return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A')
                                              : character;
}

template <class Number>
String decimal(Number number) {
  char digits[24];
  const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
  return String(std::string_view(digits, static_cast<std::size_t>(end - digits)));
}

}  // namespace

String::String(std::wstring_view text) : bytes_(encodeUtf8(text)) {}

String String::valueOf(long number) { return decimal(number); }

String String::valueOf(unsigned long number) { return decimal(number); }

std::size_t String::length() const noexcept { return countCharacters(bytes_); }

std::wstring String::wide() const {
  std::wstring text;
  decodeUtf8(bytes_, true, text);
  return text;
}

String& String::append(std::size_t count, wchar_t character) {
  if (isAscii(character)) {
    bytes_.append(count, static_cast<char>(character));
  } else {
    insertAt(bytes_.size(), count, character);
  }
  return *this;
}

void String::insert(std::size_t index, std::size_t count, wchar_t character) {
  insertAt(offsetOfCharacter(bytes_, index), count, character);
}

void String::insertAt(std::size_t offset, std::size_t count, wchar_t character) {
  char encoded[kMaximumBytesPerCharacter];
  const std::size_t length = encodeUtf8(character, encoded);
  for (; count > 0; --count) bytes_.insert(offset, encoded, length);
}

void String::wipe() noexcept { orv::wipe(bytes_); }

bool String::contains(char character) const noexcept {
  return bytes_.find(character) != std::string::npos;
}

bool String::startsWith(std::string_view start) const noexcept { return bytes_.starts_with(start); }

bool String::equalsIgnoreCase(const String& other) const noexcept {
  return std::equal(bytes_.begin(), bytes_.end(), other.bytes_.begin(), other.bytes_.end(),
                    [](char left, char right) { return upper(left) == upper(right); });
}

String String::first(std::size_t count) const {
  return String(bytes_.substr(0, offsetOfCharacter(bytes_, count)));
}

String String::trim(std::string_view unwanted) const {
  const std::size_t begin = bytes_.find_first_not_of(unwanted);
  if (begin == std::string::npos) return {};
  const std::size_t end = bytes_.find_last_not_of(unwanted);
  return String(bytes_.substr(begin, end - begin + 1));
}

String String::toUpper() && {
  std::transform(bytes_.begin(), bytes_.end(), bytes_.begin(), upper);
  return std::move(*this);
}

void wipe(std::string& bytes) noexcept {
  explicit_bzero(bytes.data(), bytes.size());
  bytes.clear();
}

void ORVUnicodeToAnsi(const String& text, char* buffer, std::size_t size) {
  const std::string& bytes = text.toBytes();
  ORVStrCpyA(buffer, size, bytes.c_str());
  if (bytes.size() < size) return;
  buffer[lengthOfWholeCharacters(std::string_view(buffer, std::strlen(buffer)))] = '\0';
}

void ORVStrCpyA(char* buffer, std::size_t size, const char* text) noexcept {
  const std::size_t length = strnlen(text, size - 1);
  std::memcpy(buffer, text, length);
  buffer[length] = '\0';
}

}  // namespace orv
