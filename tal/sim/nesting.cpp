#include "tal/sim/nesting.h"

#include <algorithm>

#include "tal/sim/errors.h"

namespace tal::sim {
namespace {

constexpr int kMaximumDepth = 8;
constexpr int kMaximumDots = 8;

// Reads just enough of TOML to know which brackets and dots stand outside of texts and comments.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  void scan() {
    while (!rest_.empty()) {
      const char next = rest_.front();
      if (next == '"' || next == '\'') {
        skipText(next);
      } else if (next == '#') {
        skip(std::min(rest_.find('\n'), rest_.size()));
      } else {
        note(next);
        skip(1);
      }
    }
  }

 private:
  void skip(std::size_t length) {
    line_ += static_cast<int>(std::count(rest_.begin(), rest_.begin() + signedOf(length), '\n'));
    rest_.remove_prefix(length);
  }

  static std::ptrdiff_t signedOf(std::size_t length) { return static_cast<std::ptrdiff_t>(length); }

  // Texts in three quotes run over lines; one or two quotes may stand before the closing three.
  void skipText(char quote) {
    const std::string_view three = quote == '"' ? "\"\"\"" : "'''";
    const bool manyLines = rest_.starts_with(three);
    const std::string_view end = manyLines ? three : three.substr(0, 1);
    skip(end.size());
    while (!rest_.empty() && !rest_.starts_with(end)) {
      if (rest_.front() == '\n' && !manyLines) return;
      skip(std::min<std::size_t>(rest_.front() == '\\' && quote == '"' ? 2 : 1, rest_.size()));
    }
    skip(std::min(end.size(), rest_.size()));
    for (int more = 0; manyLines && more < 2 && rest_.starts_with(quote); ++more) skip(1);
  }

  void note(char next) {
    if (next == '[' || next == '{') ++depth_;
    if (next == ']' || next == '}') --depth_;
    if (next == '.') ++dots_;
    if (next == '\n' || next == '=' || next == ',' || next == '{') dots_ = 0;
    if (depth_ > kMaximumDepth) throw ScenarioError(line_, "brackets are nested too deeply");
    if (dots_ > kMaximumDots) throw ScenarioError(line_, "a key has too many parts");
  }

  std::string_view rest_;
  int line_ = 1;
  int depth_ = 0;
  int dots_ = 0;
};

}  // namespace

void refuseDeepNesting(std::string_view text) { Scanner(text).scan(); }

}  // namespace tal::sim
