#include "messages/MessageFormat.h"

#include <cstddef>

namespace {

// A formatted message is cut to 2047 characters; a wider field would only cost memory.
constexpr int kWidestField = 2047;

bool isDigit(char character) { return character >= '0' && character <= '9'; }

// Reads a conversion, from behind its percent sign.
class Conversion {
 public:
  explicit Conversion(std::string_view rest) : rest_(rest) {
    skip("-+ #0");
    isSane_ = skipNumber();
    if (!rest_.empty() && rest_.front() == '.') {
      rest_.remove_prefix(1);
      isSane_ = skipNumber() && isSane_;
    }
  }

  [[nodiscard]] bool takes(ArgumentKind kind) const {
    if (!isSane_ || rest_.empty()) return false;
    return kind == ArgumentKind::kText
               ? rest_.front() == 's'
               : std::string_view("dixXuo").find(rest_.front()) != std::string_view::npos;
  }

  [[nodiscard]] std::string_view rest() const { return rest_.substr(1); }

 private:
  void skip(std::string_view characters) {
    while (!rest_.empty() && characters.find(rest_.front()) != std::string_view::npos) {
      rest_.remove_prefix(1);
    }
  }

  bool skipNumber() {
    int number = 0;
    for (; !rest_.empty() && isDigit(rest_.front()); rest_.remove_prefix(1)) {
      if (number <= kWidestField) number = number * 10 + (rest_.front() - '0');
    }
    return number <= kWidestField;
  }

  std::string_view rest_;
  bool isSane_ = true;
};

}  // namespace

bool conversionsFit(std::string_view text, std::span<const ArgumentKind> arguments) noexcept {
  std::size_t used = 0;
  for (std::size_t percent = text.find('%'); percent != std::string_view::npos;
       percent = text.find('%')) {
    text.remove_prefix(percent + 1);
    if (text.starts_with('%')) {
      text.remove_prefix(1);
      continue;
    }
    const Conversion conversion(text);
    if (used == arguments.size() || !conversion.takes(arguments[used])) return false;
    ++used;
    text = conversion.rest();
  }
  return true;
}
