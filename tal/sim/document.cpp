#include "tal/sim/document.h"

#include <toml++/toml.h>

#include <algorithm>

#include "tal/sim/errors.h"
#include "tal/sim/nesting.h"
#include "tal/text.h"

namespace tal::sim {
namespace {

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

// As deep as the brackets that were let through.
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

Node parseDocument(std::string_view text) {
  refuseBadBytes(text);
  refuseDeepNesting(text);
  try {
    return converted(toml::parse(text));
  } catch (const toml::parse_error& error) {
    throw ScenarioError(lineOf(error.source()), error.description());
  }
}

}  // namespace tal::sim
