#include "tal/sim/document.h"

#include <toml++/toml.h>

#include <algorithm>

#include "tal/text.h"

namespace tal::sim {
namespace {

// Keys and texts of a hostile file can be as long as the file.
constexpr std::size_t kProblemLimit = 1000;

std::string oneLine(std::string text) {
  fitText(text, kProblemLimit);
  return text;
}

// Deeper than any scenario needs.
constexpr int kMaximumDepth = 8;
constexpr int kMaximumDots = 8;

// The library finds bad bytes too, but not their lines.
void refuseBadBytes(std::string_view text) {
  for (int line = 1; !text.empty(); text.remove_prefix(characterLength(text))) {
    if (text.front() == '\n') ++line;
    if (static_cast<unsigned char>(text.front()) >= 0x80 && characterLength(text) == 1) {
      throw ScenarioError(line,
                          "a byte that is not UTF-8; expected {xHH} in a text for such a byte");
    }
  }
}

// Reads just enough of TOML to know which brackets and dots are outside texts and comments. The
// library destroys its values level by level on the stack, so that an endless "a.a.a.a" would end
// the process.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  void refuseDeepNesting() {
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

int lineOf(const toml::source_region& region) { return static_cast<int>(region.begin.line); }

Node converted(const toml::node& from);

Node::List convertedItems(const toml::array& from) {
  Node::List items;
  items.reserve(from.size());
  for (const toml::node& item : from) items.push_back(converted(item));
  return items;
}

Node::Table convertedMembers(const toml::table& from) {
  Node::Table members;
  members.reserve(from.size());
  for (const auto& [key, node] : from) {
    members.push_back({std::string(key.str()), lineOf(key.source()), converted(node)});
  }
  std::ranges::stable_sort(members, {}, &Member::line);
  return members;
}

// As deep as the brackets that were accepted.
Node converted(const toml::node& from) {
  Node to;
  to.line = lineOf(from.source());
  if (const auto* integer = from.as_integer()) {
    to.value = integer->get();
  } else if (const auto* text = from.as_string()) {
    to.value = text->get();
  } else if (const auto* list = from.as_array()) {
    to.value = convertedItems(*list);
  } else if (const auto* table = from.as_table()) {
    to.value = convertedMembers(*table);
  }
  return to;
}

}  // namespace

ScenarioError::ScenarioError(int line, std::string_view problem)
    : std::runtime_error(oneLine(std::string(problem))), line_(line) {}

ScenarioError ScenarioError::in(std::string_view name) const {
  std::string place(name);
  if (line_ > 0) place.append(":").append(std::to_string(line_));
  return {line_, place.append(": ").append(what())};
}

Node parseDocument(std::string_view text) {
  refuseBadBytes(text);
  Scanner(text).refuseDeepNesting();
  try {
    return converted(toml::parse(text));
  } catch (const toml::parse_error& error) {
    throw ScenarioError(lineOf(error.source()), error.description());
  }
}

}  // namespace tal::sim
