// The string type of the whole program.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace orv {

// Wide text; one element is one character. Narrow texts are UTF-8 and are converted without loss
// (orv/Encoding.h). Case conversions and comparisons change or ignore the case of ASCII letters
// only, so that no output depends on a locale.
class String {
 public:
  String() = default;
  String(const char* bytes) : String(std::string_view(bytes)) {}  // literals read as texts
  explicit String(std::string_view bytes) { append(bytes); }
  explicit String(std::wstring text) noexcept : text_(std::move(text)) {}

  // Decimal, with a leading minus sign if negative.
  static String valueOf(long number);
  static String valueOf(unsigned long number);
  static String valueOf(int number) { return valueOf(static_cast<long>(number)); }
  static String valueOf(unsigned int number) { return valueOf(static_cast<unsigned long>(number)); }

  [[nodiscard]] std::size_t length() const noexcept { return text_.size(); }
  [[nodiscard]] bool isEmpty() const noexcept { return text_.empty(); }
  // `index` is below length().
  [[nodiscard]] wchar_t charAt(std::size_t index) const noexcept { return text_[index]; }
  [[nodiscard]] const std::wstring& wide() const noexcept { return text_; }
  [[nodiscard]] std::string toBytes() const;

  String& append(std::string_view bytes);
  String& append(const String& other);
  String& append(std::size_t count, wchar_t character);
  String& operator+=(const String& other) { return append(other); }
  String& operator+=(const char* bytes) { return append(std::string_view(bytes)); }
  // `index` is at most length().
  void insert(std::size_t index, std::size_t count, wchar_t character);

  // Empties the text and overwrites its memory.
  void wipe() noexcept;

  [[nodiscard]] bool contains(wchar_t character) const noexcept;
  [[nodiscard]] bool startsWith(std::wstring_view start) const noexcept;
  [[nodiscard]] bool equalsIgnoreCase(const String& other) const noexcept;
  // At most `count` characters from the start.
  [[nodiscard]] String first(std::size_t count) const { return String(text_.substr(0, count)); }
  // Without the characters of `unwanted` at both ends.
  [[nodiscard]] String trim(std::wstring_view unwanted = L" \t\r\n") const;
  [[nodiscard]] String toUpper() const;

  friend bool operator==(const String& left, const String& right) noexcept = default;
  friend String operator+(String left, const String& right) { return std::move(left += right); }
  friend String operator+(String left, const char* right) { return std::move(left += right); }
  friend String operator+(const char* left, const String& right);

 private:
  std::wstring text_;
};

// Empties the bytes and overwrites their memory.
void wipe(std::string& bytes) noexcept;

// Copies the bytes of the text and a closing NUL into `buffer`. A text that is too long is cut
// after a whole character. `size` is the size of the buffer, at least 1.
void ORVUnicodeToAnsi(const String& text, char* buffer, std::size_t size);

// Copies a narrow text and a closing NUL, and cuts a text that is too long. `size` is the size of
// the buffer, at least 1.
void ORVStrCpyA(char* buffer, std::size_t size, const char* text) noexcept;

}  // namespace orv
