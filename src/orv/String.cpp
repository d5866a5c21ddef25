#include "orv/String.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>

#include "orv/Encoding.h"

namespace orv {
namespace {

wchar_t upper(wchar_t character) noexcept {
  return character >= L'a' && character <= L'z' ? static_cast<wchar_t>(character - L'a' + L'A')
                                                : character;
}

template <class Number>
String decimal(Number number) {
  char digits[24];
  const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
  return String(std::wstring(std::begin(digits), end));
}

}  // namespace

String String::valueOf(long number) { return decimal(number); }

String String::valueOf(unsigned long number) { return decimal(number); }

std::string String::toBytes() const {
  std::string bytes;
  bytes.reserve(text_.size());
  char encoded[kMaximumBytesPerCharacter];
  for (const wchar_t character : text_) {
    bytes.append(encoded, encodeUtf8(character, encoded));
  }
  return bytes;
}

String& String::append(std::string_view bytes) {
  decodeUtf8(bytes, true, text_);
  return *this;
}

String& String::append(const String& other) {
  text_ += other.text_;
  return *this;
}

String& String::append(std::size_t count, wchar_t character) {
  text_.append(count, character);
  return *this;
}

void String::insert(std::size_t index, std::size_t count, wchar_t character) {
  text_.insert(index, count, character);
}

void String::wipe() noexcept {
  explicit_bzero(text_.data(), text_.size() * sizeof(wchar_t));
  text_.clear();
}

bool String::contains(wchar_t character) const noexcept {
  return text_.find(character) != std::wstring::npos;
}

bool String::startsWith(std::wstring_view start) const noexcept { return text_.starts_with(start); }

bool String::equalsIgnoreCase(const String& other) const noexcept {
  return std::equal(text_.begin(), text_.end(), other.text_.begin(), other.text_.end(),
                    [](wchar_t left, wchar_t right) { return upper(left) == upper(right); });
}

String String::trim(std::wstring_view unwanted) const {
  const std::size_t begin = text_.find_first_not_of(unwanted);
  if (begin == std::wstring::npos) return {};
  const std::size_t end = text_.find_last_not_of(unwanted);
  return String(text_.substr(begin, end - begin + 1));
}

String String::toUpper() const {
  String result(*this);
  std::transform(result.text_.begin(), result.text_.end(), result.text_.begin(), upper);
  return result;
}

String operator+(const char* left, const String& right) {
  // Room for the rest of an output line: tabs before the text, a comma, the line end.
  constexpr std::size_t kSlack = 12;
  const std::string_view bytes(left);
  String result;
  result.text_.reserve(bytes.size() + right.length() + kSlack);
  result.append(bytes);
  return std::move(result.append(right));
}

void wipe(std::string& bytes) noexcept {
  explicit_bzero(bytes.data(), bytes.size());
  bytes.clear();
}

void ORVUnicodeToAnsi(const String& text, char* buffer, std::size_t size) {
  const std::string bytes = text.toBytes();
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
