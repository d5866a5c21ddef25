#include <limits>

#include "tal/sim/calls.h"
#include "tal/sim/read_sections.h"

namespace tal::sim {
namespace {

Call readCall(TableReader& table) {
  const std::optional<Call> call = callNamed(table.text("call").value_or(""));
  if (!call) table.refuseValue("call", "the name of an interface function other than TalStart");
  return *call;
}

Status readStatus(TableReader& table) {
  using Limits = std::numeric_limits<std::int16_t>;
  const auto status = table.number("status", Limits::min(), Limits::max()).value_or(0);
  if (status == 0) table.refuseValue("status", "a status other than 0");
  return static_cast<Status>(status);
}

std::optional<std::uint32_t> readOrdinal(TableReader& table, std::string_view key) {
  const auto ordinal = table.number(key, 1, std::numeric_limits<std::uint32_t>::max());
  if (!ordinal) return std::nullopt;
  return static_cast<std::uint32_t>(*ordinal);
}

}  // namespace

void readFaults(TableReader& root, std::vector<Fault>& faults) {
  for (const Node* const node : root.tables("fault")) {
    TableReader table(*node, "[[fault]]");
    table.require("call");
    table.require("status");
    Fault& fault = faults.emplace_back();
    fault.call = readCall(table);
    fault.at = readOrdinal(table, "at");
    fault.refresh = readOrdinal(table, "refresh");
    fault.status = readStatus(table);
    table.finish();
  }
}

}  // namespace tal::sim
