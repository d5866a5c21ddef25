#include "tal/sim/table_reader.h"

#include <algorithm>

#include "tal/sim/errors.h"

namespace tal::sim {

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
