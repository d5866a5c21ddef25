#include "tal/sim/table_reader.h"

#include <algorithm>
#include <limits>

namespace tal::sim {
namespace {

// Longer than every field, so that cutting can be tested.
constexpr std::size_t kTextLimit = 2048;
// A list may have values for this many refreshes.
constexpr std::size_t kListLimit = 10'000;

std::string quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

std::string described(const Node& node) {
  if (const auto* integer = std::get_if<std::int64_t>(&node.value)) {
    return std::to_string(*integer);
  }
  if (const auto* text = std::get_if<std::string>(&node.value)) {
    return text->size() > kTextLimit ? "a text of " + std::to_string(text->size()) + " bytes"
                                     : quoted(*text);
  }
  if (const auto* list = std::get_if<Node::List>(&node.value)) {
    return list->empty() ? "an empty list" : "a list";
  }
  if (std::holds_alternative<Node::Table>(node.value)) return "a table";
  return "neither a whole number nor a text";
}

std::string expectedOne(const NumberFormat& format) {
  std::string expected = "a whole number from " + std::to_string(format.lowest) + " to " +
                         std::to_string(format.highest);
  for (const recording::Word& word : format.words) expected += " or " + quoted(word.word);
  return expected;
}

std::string expectedForms(std::string expected, Forms forms) {
  if (forms != Forms::kOne) expected += ", or a list of up to 10000 with one for each refresh";
  if (forms == Forms::kStepped) expected += ", or a table with start, step and each";
  return expected;
}

std::string expectedText(Forms forms) {
  return expectedForms("a text of at most " + std::to_string(kTextLimit) + " bytes", forms);
}

// Refuses the value, or a part of it, that a key has.
[[noreturn]] void refuse(std::string_view key, const Node& value, std::string_view expected) {
  throw ScenarioError(
      value.line, quoted(key) + " is " + described(value) + "; expected " + std::string(expected));
}

// The one number that the node stands for.
std::int64_t singleNumber(std::string_view key, const Node& node, const NumberFormat& format) {
  if (const auto* text = std::get_if<std::string>(&node.value)) {
    const auto word = std::ranges::find(format.words, *text, &recording::Word::word);
    if (word != format.words.end()) return word->code;
  }
  const auto* integer = std::get_if<std::int64_t>(&node.value);
  if (integer == nullptr || *integer < format.lowest || *integer > format.highest) {
    refuse(key, node, expectedForms(expectedOne(format), format.forms));
  }
  return *integer;
}

// The entries of a list with one for each refresh; null for another value.
const Node::List* refreshList(const Node& node, Forms forms) {
  const auto* list = std::get_if<Node::List>(&node.value);
  const bool fits = list != nullptr && !list->empty() && list->size() <= kListLimit;
  return fits && forms != Forms::kOne ? list : nullptr;
}

NumberValue steppedNumber(std::string_view key, const Node::Table& table,
                          const NumberFormat& format) {
  NumberValue value{{0}};
  NumberFormat start = format;
  start.forms = Forms::kOne;
  constexpr std::int64_t kWidest = std::numeric_limits<std::uint32_t>::max();
  for (const Member& member : table) {
    if (member.key == "start") {
      value.byRefresh = {singleNumber(key, member.node, start)};
    } else if (member.key == "step") {
      value.step = singleNumber("step", member.node, {-kWidest, kWidest});
    } else if (member.key == "each") {
      value.each = singleNumber("each", member.node, {-kWidest, kWidest});
    } else {
      throw ScenarioError(member.line, "unknown key " + quoted(member.key) + " in " + quoted(key) +
                                           "; expected start, step or each");
    }
  }
  return value;
}

std::string singleText(std::string_view key, const Node& node, Forms forms) {
  const auto* text = std::get_if<std::string>(&node.value);
  if (text == nullptr || text->size() > kTextLimit) refuse(key, node, expectedText(forms));
  return *text;
}

// At least one text; exactly one if no list is allowed.
std::vector<std::string> textsOf(const Member& member, Forms forms) {
  const Node::List* list = refreshList(member.node, forms);
  if (list == nullptr) return {singleText(member.key, member.node, forms)};
  std::vector<std::string> texts;
  for (const Node& item : *list) texts.push_back(singleText(member.key, item, forms));
  return texts;
}

const Node::Table& tableOf(const Member& member) {
  const auto* table = std::get_if<Node::Table>(&member.node.value);
  if (table == nullptr) refuse(member.key, member.node, "a table");
  return *table;
}

// The tables of a list of tables.
std::vector<const Node*> tablesOf(const Member& member) {
  const auto* list = std::get_if<Node::List>(&member.node.value);
  if (list == nullptr) refuse(member.key, member.node, "a list of tables");
  std::vector<const Node*> tables;
  for (const Node& item : *list) {
    if (!std::holds_alternative<Node::Table>(item.value)) refuse(member.key, item, "a table");
    tables.push_back(&item);
  }
  return tables;
}

}  // namespace

NumberValue numberOf(const Member& member, const NumberFormat& format) {
  const auto* table = std::get_if<Node::Table>(&member.node.value);
  if (table != nullptr && format.forms == Forms::kStepped) {
    return steppedNumber(member.key, *table, format);
  }
  NumberValue value;
  if (const Node::List* list = refreshList(member.node, format.forms)) {
    for (const Node& item : *list)
      value.byRefresh.push_back(singleNumber(member.key, item, format));
  } else {
    value.byRefresh = {singleNumber(member.key, member.node, format)};
  }
  return value;
}

TableReader::TableReader(const Node::Table& table, int line, std::string where)
    : table_(&table), line_(line), where_(std::move(where)) {}

TableReader::TableReader(const Node& table, std::string where)
    : TableReader(std::get<Node::Table>(table.value), table.line, std::move(where)) {}

void TableReader::read(const recording::Key& key, Text& text) {
  const Member* const member = take(key.name);
  if (member == nullptr) return;
  text = Text(textsOf(*member, Forms::kByRefresh));
  textBytes_ += text.longest(kItemLimit);
}

void TableReader::read(const recording::Key& key, GaugeValues& gauge) {
  std::optional<TableReader> values = table(key.name, '"' + std::string(key.name) + '"');
  if (!values) return;
  recording::visitGauge(values->visitor(), gauge);
  values->finish();
}

std::optional<std::int64_t> TableReader::number(std::string_view key, std::int64_t lowest,
                                                std::int64_t highest) {
  const Member* const member = take(key);
  if (member == nullptr) return std::nullopt;
  return numberOf(*member, {lowest, highest}).byRefresh.front();
}

std::optional<std::string> TableReader::text(std::string_view key) {
  const Member* const member = take(key);
  if (member == nullptr) return std::nullopt;
  return textsOf(*member, Forms::kOne).front();
}

std::optional<TableReader> TableReader::table(std::string_view key, std::string where) {
  const Member* const member = take(key);
  if (member == nullptr) return std::nullopt;
  return TableReader(tableOf(*member), member->line, std::move(where));
}

std::vector<const Node*> TableReader::tables(std::string_view key) {
  const Member* const member = take(key);
  return member == nullptr ? std::vector<const Node*>() : tablesOf(*member);
}

void TableReader::require(std::string_view key) const {
  if (find(key) != nullptr) return;
  throw ScenarioError(line_, where_ + " has no key \"" + std::string(key) + '"');
}

void TableReader::refuseValue(std::string_view key, std::string_view expected) const {
  refuse(key, find(key)->node, expected);
}

void TableReader::finish() const {
  for (const Member& member : *table_) {
    if (std::ranges::find(asked_, member.key) != asked_.end()) continue;
    std::string problem = "unknown key \"" + member.key + "\" in " + where_ + "; expected ";
    for (const std::string_view key : asked_) {
      problem.append(key == asked_.front() ? "" : ", ").append(key);
    }
    throw ScenarioError(member.line, problem);
  }
}

const Member* TableReader::find(std::string_view key) const {
  const auto found = std::ranges::find(*table_, key, &Member::key);
  return found == table_->end() ? nullptr : &*found;
}

const Member* TableReader::take(std::string_view key) {
  asked_.push_back(key);
  return find(key);
}

}  // namespace tal::sim
