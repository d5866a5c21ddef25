#include "tal/sim/read_scenario.h"

#include <array>
#include <limits>
#include <optional>
#include <string>

#include "tal/recording/fields.h"
#include "tal/regular_file.h"
#include "tal/sim/calls.h"
#include "tal/sim/table_reader.h"

namespace tal::sim {
namespace {

std::optional<std::uint32_t> readOrdinal(TableReader& table, std::string_view key) {
  const auto ordinal = table.number(key, 1, std::numeric_limits<std::uint32_t>::max());
  if (!ordinal) return std::nullopt;
  return static_cast<std::uint32_t>(*ordinal);
}

// The number of items announced so far while a scenario is read, and their bytes.
class ItemBudget {
 public:
  // Reads the keys count, from and until, and takes the items from the budget, `owners` times. Call
  // it after the texts of the table were read, because they count too.
  void readPresence(TableReader& table, Presence& presence, std::uint64_t owners = 1) {
    table.read("count", presence.count, Forms::kByRefresh);
    presence.from = readOrdinal(table, "from").value_or(presence.from);
    presence.until = readOrdinal(table, "until").value_or(presence.until);
    if (presence.until < presence.from) {
      table.refuseValue("until", "a number that is not below \"from\"");
    }
    take(presence.count.largest() * owners, table);
  }

 private:
  void take(std::uint64_t items, const TableReader& table) {
    items_ += items;
    if (items_ > kItemLimit) {
      throw ScenarioError(table.line(), "the scenario stands for more than " +
                                            std::to_string(kItemLimit) +
                                            " items; expected smaller counts");
    }
    bytes_ += items * (kItemBytes + table.textBytes());
    if (bytes_ > kByteLimit) {
      throw ScenarioError(table.line(), "the items take up more than " +
                                            std::to_string(kByteLimit) +
                                            " bytes; expected smaller counts or shorter texts");
    }
  }

  std::uint64_t items_ = 0;
  std::uint64_t bytes_ = 0;
};

// Reads a list of tables into `entries`; `readFields` gets each table with its entry.
template <typename Entry, typename ReadFields>
void readEntries(TableReader& parent, const recording::Key& key, std::string_view where,
                 std::vector<Entry>& entries, const ReadFields& readFields) {
  for (const Node* const node : parent.tables(key.name)) {
    TableReader table(*node, std::string(where));
    readFields(table, entries.emplace_back());
    table.finish();
  }
}

template <typename Visit, typename Values>
void readTable(TableReader& root, const recording::Key& key, const Visit& visit, Values& values) {
  std::optional<TableReader> table = root.table(key.name, '[' + std::string(key.name) + ']');
  if (!table) return;
  visit(*table, values);
  table->finish();
}

void readInformation(TableReader& table, InformationValues& information) {
  recording::visitInformation(table.visitor(), information);
}

void readVersion(TableReader& table, VersionValues& version) {
  recording::visitVersion(table.visitor(), version);
}

void readUsage(TableReader& table, UsageValues& usage) {
  recording::visitUsage(table.visitor(), usage);
}

void readCommunication(TableReader& table, CommunicationValues& communication, ItemBudget& budget) {
  recording::visitCommunication(table.visitor(), communication);
  readEntries(table, recording::kProtocolKey, "[[communication.protocol]]", communication.protocols,
              [&](TableReader& entry, ProtocolEntry& protocol) {
                recording::visitProtocol(entry.visitor(), protocol);
                budget.readPresence(entry, protocol.presence);
              });
}

void readFile(TableReader& table, FileEntry& file, ItemBudget& budget) {
  table.require("name");
  recording::visitFile(table.visitor(), file);
  budget.readPresence(table, file.presence);
  readEntries(table, recording::kHandleKey, "a handle", file.handles,
              [&](TableReader& entry, FileHandleEntry& handle) {
                recording::visitFileHandle(entry.visitor(), handle);
                budget.readPresence(entry, handle.presence, file.presence.count.largest());
              });
}

void readClient(TableReader& table, ClientEntry& client, ItemBudget& budget) {
  table.require("id");
  recording::visitClient(table.visitor(), client);
  budget.readPresence(table, client.presence);
  readEntries(table, recording::kHandleKey, "a handle", client.handles,
              [&](TableReader& entry, ClientHandleEntry& handle) {
                recording::visitClientHandle(entry.visitor(), handle);
                budget.readPresence(entry, handle.presence, client.presence.count.largest());
              });
}

void readSqlConnection(TableReader& table, SqlConnectionEntry& connection, ItemBudget& budget) {
  recording::visitSqlConnection(table.visitor(), connection);
  budget.readPresence(table, connection.presence);
}

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

void readFault(TableReader& table, Fault& fault) {
  table.require("call");
  table.require("status");
  fault.call = readCall(table);
  fault.at = readOrdinal(table, "at");
  fault.refresh = readOrdinal(table, "refresh");
  fault.status = readStatus(table);
}

Scenario readScenario(const Node& document) {
  TableReader root(document, "the scenario");
  ItemBudget budget;
  // Reads an entry, with the budget.
  const auto counting = [&budget](const auto& read) {
    return [&budget, read](TableReader& table, auto& values) { read(table, values, budget); };
  };
  Scenario scenario;
  readTable(root, recording::kEngineKey, readInformation, scenario.information);
  readTable(root, recording::kVersionKey, readVersion, scenario.version);
  readTable(root, recording::kUsageKey, readUsage, scenario.usage);
  readTable(root, recording::kCommunicationKey, counting(readCommunication),
            scenario.communication);
  readEntries(root, recording::kFileKey, "[[file]]", scenario.files, counting(readFile));
  readEntries(root, recording::kClientKey, "[[client]]", scenario.clients, counting(readClient));
  readEntries(root, recording::kSqlConnectionKey, "[[sql_connection]]", scenario.sqlConnections,
              counting(readSqlConnection));
  readEntries(root, "fault", "[[fault]]", scenario.faults, readFault);
  root.finish();
  return scenario;
}

// The bytes of a file.
std::string textIn(const std::string& path) {
  try {
    const RegularFile file(path);
    std::array<char, 16384> part;
    std::string text;
    while (text.size() <= kFileLimit) {
      const std::size_t count = file.readAt(text.size(), part);
      if (count == 0) return text;
      text.append(part.data(), count);
    }
  } catch (const FileError& error) {
    throw ScenarioError(0, error.what());
  }
  throw ScenarioError(0, "is larger than " + std::to_string(kFileLimit) + " bytes");
}

}  // namespace

Scenario parseScenario(std::string_view text, std::string_view name) {
  try {
    return readScenario(parseDocument(text));
  } catch (const ScenarioError& error) {
    throw error.in(name);
  }
}

Scenario scenarioIn(const std::string& path) {
  std::string text;
  try {
    text = textIn(path);
  } catch (const ScenarioError& error) {
    throw error.in(path);
  }
  return parseScenario(text, path);
}

}  // namespace tal::sim
