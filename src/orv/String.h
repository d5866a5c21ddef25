// The string type of the whole program.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace orv {

// A sum of texts, such as "a" + text + ",". It only refers to them, so it must not outlive its
// expression: give a variable or a function's result the type String. Writers take a sum as it is,
// so that a line of a report needs no memory of its own.
template <std::size_t kCount>
struct Sum {
  std::array<std::string_view, kCount> texts;
};

// Text whose lengths and positions count characters. It is kept in UTF-8, as it comes in and goes
// out; a byte that is not part of a valid sequence counts as one character (orv/Encoding.h). Case
// conversions and comparisons change or ignore the case of ASCII letters only, so that no output
// depends on a locale.
class String {
 public:
  String() = default;
  String(const char* bytes) : bytes_(bytes) {}  // literals read as texts
  explicit String(std::string_view bytes) : bytes_(bytes) {}
  explicit String(std::string bytes) noexcept : bytes_(std::move(bytes)) {}
  explicit String(std::wstring_view text);
  template <std::size_t kCount>
  String(const Sum<kCount>& sum) {
    *this += sum;
  }

  // Decimal, with a leading minus sign if negative.
  static String valueOf(long number);
  static String valueOf(unsigned long number);
  static String valueOf(int number) { return valueOf(static_cast<long>(number)); }
  static String valueOf(unsigned int number) { return valueOf(static_cast<unsigned long>(number)); }

  [[nodiscard]] std::size_t length() const noexcept;
  [[nodiscard]] bool isEmpty() const noexcept { return bytes_.empty(); }
  [[nodiscard]] const std::string& toBytes() const noexcept { return bytes_; }
  // One element is one character.
  [[nodiscard]] std::wstring wide() const;

  String& append(std::string_view bytes) {
    bytes_.append(bytes);
    return *this;
  }
  String& append(const String& other) { return append(other.bytes_); }
  String& append(std::size_t count, wchar_t character);
  String& operator+=(const String& other) { return append(other); }
  String& operator+=(const char* bytes) { return append(std::string_view(bytes)); }
  template <std::size_t kCount>
  String& operator+=(const Sum<kCount>& sum) {
    for (const std::string_view text : sum.texts) append(text);
    return *this;
  }
  // `index` is at most length().
  void insert(std::size_t index, std::size_t count, wchar_t character);

  void clear() noexcept { bytes_.clear(); }
  // Empties the text and overwrites its memory.
  void wipe() noexcept;

  // `character` is ASCII.
  [[nodiscard]] bool contains(char character) const noexcept;
  [[nodiscard]] bool startsWith(std::string_view start) const noexcept;
  [[nodiscard]] bool equalsIgnoreCase(const String& other) const noexcept;
  // At most `count` characters from the start.
  [[nodiscard]] String first(std::size_t count) const;
  // Without the characters of `unwanted` at both ends; all of them are ASCII.
  [[nodiscard]] String trim(std::string_view unwanted = " \t\r\n") const;
  [[nodiscard]] String toUpper() const& { return String(*this).toUpper(); }
  [[nodiscard]] String toUpper() &&;

  friend bool operator==(const String& left, const String& right) noexcept = default;

 private:
  // `offset` counts bytes.
  void insertAt(std::size_t offset, std::size_t count, wchar_t character);

  std::string bytes_;
};

// What a sum is made of: a String, a literal or a sum.
inline Sum<1> summand(const String& text) noexcept { return {{text.toBytes()}}; }
inline Sum<1> summand(const char* text) noexcept { return {{text}}; }
template <std::size_t kCount>
const Sum<kCount>& summand(const Sum<kCount>& sum) noexcept {
  return sum;
}

template <std::size_t kLeft, std::size_t kRight>
Sum<kLeft + kRight> operator+(const Sum<kLeft>& left, const Sum<kRight>& right) {
  Sum<kLeft + kRight> sum;
  std::copy(left.texts.begin(), left.texts.end(), sum.texts.begin());
  std::copy(right.texts.begin(), right.texts.end(), sum.texts.begin() + kLeft);
  return sum;
}
template <std::size_t kCount>
Sum<kCount + 1> operator+(const Sum<kCount>& left, const char* right) {
  return left + summand(right);
}
template <std::size_t kCount>
Sum<kCount + 1> operator+(const Sum<kCount>& left, const String& right) {
  return left + summand(right);
}
inline Sum<2> operator+(const String& left, const String& right) {
  return summand(left) + summand(right);
}
inline Sum<2> operator+(const String& left, const char* right) {
  return summand(left) + summand(right);
}
inline Sum<2> operator+(const char* left, const String& right) {
  return summand(left) + summand(right);
}

// Empties the bytes and overwrites their memory.
void wipe(std::string& bytes) noexcept;

// Copies the bytes of the text and a closing NUL into `buffer`. A text that is too long is cut
// after a whole character. `size` is the size of the buffer, at least 1.
void ORVUnicodeToAnsi(const String& text, char* buffer, std::size_t size);

// Copies a narrow text and a closing NUL, and cuts a text that is too long. `size` is the size of
// the buffer, at least 1.
void ORVStrCpyA(char* buffer, std::size_t size, const char* text) noexcept;

}  // namespace orv
