#include "tal/sim/read_sections.h"

namespace tal::sim {
namespace {

void readProtocols(TableReader& communication, std::vector<ProtocolEntry>& protocols,
                   ItemBudget& budget) {
  for (const Node* const node : communication.tables("protocol")) {
    TableReader table(*node, "[[communication.protocol]]");
    ProtocolEntry& protocol = protocols.emplace_back();
    table.read("code", protocol.code, kProtocolWords);
    table.read("requests", protocol.requests);
    table.read("current_sessions", protocol.currentSessions);
    table.read("peak_sessions", protocol.peakSessions);
    readPresence(table, protocol.presence, budget);
    table.finish();
  }
}

}  // namespace

void readInformation(TableReader& root, InformationValues& information) {
  std::optional<TableReader> table = root.table("engine", "[engine]");
  if (!table) return;
  table->read("type", information.engineType);
  table->read("flag", information.flag);
  table->read("first", information.first);
  table->read("second", information.second);
  table->read("third", information.third);
  table->finish();
}

void readVersion(TableReader& root, VersionValues& version) {
  std::optional<TableReader> table = root.table("version", "[version]");
  if (!table) return;
  table->read("major", version.major);
  table->read("minor", version.minor);
  table->read("build", version.build);
  table->finish();
}

void readUsage(TableReader& root, UsageValues& usage) {
  std::optional<TableReader> table = root.table("usage", "[usage]");
  if (!table) return;
  readGauge(*table, "users", usage.users);
  readGauge(*table, "files", usage.files);
  readGauge(*table, "handles", usage.handles);
  readGauge(*table, "transactions", usage.transactions);
  readGauge(*table, "clients", usage.clients);
  readGauge(*table, "worker_threads", usage.workerThreads);
  readGauge(*table, "locks", usage.locks);
  readGauge(*table, "data_mb", usage.dataMb);
  readGauge(*table, "sessions", usage.sessions);
  table->read("up_time_seconds", usage.upTimeSeconds);
  table->finish();
}

void readCommunication(TableReader& root, CommunicationValues& communication, ItemBudget& budget) {
  std::optional<TableReader> table = root.table("communication", "[communication]");
  if (!table) return;
  table->read("requests", communication.requests);
  table->read("counter_1", communication.counter1);
  table->read("counter_2", communication.counter2);
  table->read("counter_3", communication.counter3);
  readGauge(*table, "remote_sessions", communication.remoteSessions);
  readGauge(*table, "threads", communication.threads);
  table->read("timeouts", communication.timeouts);
  table->read("recoveries", communication.recoveries);
  readProtocols(*table, communication.protocols, budget);
  table->finish();
}

}  // namespace tal::sim
