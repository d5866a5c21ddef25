#include "tal/sim/read_parts.h"

#include <limits>
#include <string>

#include "tal/sim/errors.h"

namespace tal::sim {
namespace {

std::uint32_t readRefresh(TableReader& table, std::string_view key, std::uint32_t otherwise) {
  constexpr std::int64_t kHighest = std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(table.number(key, 1, kHighest).value_or(otherwise));
}

}  // namespace

void ItemBudget::take(std::uint64_t items, std::uint64_t owners, std::uint64_t textBytes,
                      int line) {
  items_ += items * owners;
  if (items_ > kItemLimit) {
    throw ScenarioError(line, "the scenario stands for more than " + std::to_string(kItemLimit) +
                                  " items; expected smaller counts");
  }
  bytes_ += items * owners * (kItemBytes + textBytes);
  if (bytes_ > kByteLimit) {
    throw ScenarioError(line, "the items take up more than " + std::to_string(kByteLimit) +
                                  " bytes; expected smaller counts or shorter texts");
  }
}

void readGauge(TableReader& table, std::string_view key, GaugeValues& gauge) {
  std::optional<TableReader> values = table.table(key, std::string("\"").append(key) + "\"");
  if (!values) return;
  values->read("current", gauge.current);
  values->read("peak", gauge.peak);
  values->read("maximum", gauge.maximum);
  values->finish();
}

void readPresence(TableReader& table, Presence& presence, ItemBudget& budget,
                  std::uint64_t owners) {
  table.read("count", presence.count, {}, Forms::kByRefresh);
  presence.from = readRefresh(table, "from", presence.from);
  presence.until = readRefresh(table, "until", presence.until);
  if (presence.until < presence.from) {
    table.refuseValue("until", "a number that is not below \"from\"");
  }
  budget.take(presence.count.largest(), owners, table.textBytes(), table.line());
}

void readHandles(TableReader& owner, const Presence& ownerPresence, std::string_view nameKey,
                 ItemBudget& budget, std::vector<HandleEntry>& handles) {
  for (const Node* const node : owner.tables("handle")) {
    TableReader table(*node, "a handle");
    HandleEntry& handle = handles.emplace_back();
    table.read(nameKey, handle.name);
    if (nameKey == "client") table.read("client_index", handle.clientIndex);
    table.read("open_mode", handle.openMode, kOpenModeWords);
    table.read("record_lock", handle.recordLockType, kRecordLockWords);
    table.read("wait_state", handle.waitState, kWaitStateWords);
    table.read("transaction_state", handle.transactionState, kTransactionStateWords);
    readPresence(table, handle.presence, budget, ownerPresence.count.largest());
    table.finish();
  }
}

}  // namespace tal::sim
