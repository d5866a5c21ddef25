// Who logs in to a server.
#pragma once

#include <string.h>

#include <concepts>
#include <string>
#include <string_view>

namespace tal {

// Overwrites a text and empties it. Memory that the text had before it grew is not reached.
inline void wipe(std::string& text) noexcept {
  text.resize(text.capacity());  // an earlier, longer text may lie behind this one
  ::explicit_bzero(text.data(), text.size());
  text.clear();
}

// A text that is wiped at its end, such as a password.
class Secret {
 public:
  Secret() = default;
  template <std::convertible_to<std::string_view> Text>
  Secret(const Text& text) : text_(std::string_view(text)) {}
  Secret(const Secret&) = default;
  Secret& operator=(const Secret& other) {
    if (this == &other) return *this;
    wipe(text_);
    text_ = other.text_;
    return *this;
  }
  ~Secret() { wipe(text_); }

  // A copy of this text is not wiped.
  [[nodiscard]] const std::string& text() const noexcept { return text_; }
  [[nodiscard]] bool empty() const noexcept { return text_.empty(); }

 private:
  std::string text_;
};

// Either text may be empty.
struct Credentials {
  std::string user;
  Secret password;
};

}  // namespace tal
