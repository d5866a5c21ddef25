#include "tal/sim/generate.h"

namespace tal::sim {
namespace {

// Makes the items of every entry, in order. `make` gets the entry and the place of the item.
template <typename Item, typename Entry, typename Make>
std::vector<Item> itemsOf(const std::vector<Entry>& entries, std::uint64_t refresh,
                          std::uint64_t owner, const Make& make) {
  std::uint64_t total = 0;
  for (const Entry& entry : entries) total += entry.presence.items(refresh);
  std::vector<Item> items;
  items.reserve(total);
  for (const Entry& entry : entries) {
    const std::uint32_t count = entry.presence.items(refresh);
    for (std::uint64_t item = 1; item <= count; ++item) {
      items.push_back(make(entry, Place{refresh, item, owner}));
    }
  }
  return items;
}

Gauge gaugeAt(const GaugeValues& values, const Place& place) {
  return {values.current.at(place), values.peak.at(place), values.maximum.at(place)};
}

Protocol protocolAt(const ProtocolEntry& entry, const Place& place) {
  return {entry.code.at(place), entry.requests.at(place), entry.currentSessions.at(place),
          entry.peakSessions.at(place)};
}

FileHandle fileHandleAt(const HandleEntry& entry, const Place& place) {
  return {entry.clientIndex.at(place),      entry.openMode.at(place),
          entry.recordLockType.at(place),   entry.waitState.at(place),
          entry.transactionState.at(place), entry.name.at(place)};
}

ClientHandle clientHandleAt(const HandleEntry& entry, const Place& place) {
  return {entry.openMode.at(place), entry.recordLockType.at(place), entry.waitState.at(place),
          entry.transactionState.at(place), entry.name.at(place)};
}

OpenFile fileAt(const FileEntry& entry, const Place& place) {
  OpenFile file;
  file.name = entry.name.at(place);
  file.pageSize = entry.pageSize.at(place);
  file.readOnly = entry.readOnly.at(place);
  file.recordLocks = entry.recordLocks.at(place);
  file.transactionLock = entry.transactionLock.at(place);
  file.sizeKb = entry.sizeKb.at(place);
  file.handles = itemsOf<FileHandle>(entry.handles, place.refresh, place.item, fileHandleAt);
  return file;
}

Client clientAt(const ClientEntry& entry, const Place& place) {
  Client client;
  client.id = entry.id.at(place);
  client.firstNumber = entry.firstNumber.at(place);
  client.taskNumber = entry.taskNumber.at(place);
  client.site = entry.site.at(place);
  client.networkAddress = entry.networkAddress.at(place);
  client.reserved = entry.reserved.at(place);
  client.recordsDeleted = entry.recordsDeleted.at(place);
  client.recordsUpdated = entry.recordsUpdated.at(place);
  client.recordsInserted = entry.recordsInserted.at(place);
  client.recordsRead = entry.recordsRead.at(place);
  client.diskAccesses = entry.diskAccesses.at(place);
  client.cacheAccesses = entry.cacheAccesses.at(place);
  client.locksUsed = entry.locksUsed.at(place);
  client.transactionState = entry.transactionState.at(place);
  client.processId = entry.processId.at(place);
  client.connectionNumber = entry.connectionNumber.at(place);
  client.sessionName = entry.sessionName.at(place);
  client.handles = itemsOf<ClientHandle>(entry.handles, place.refresh, place.item, clientHandleAt);
  return client;
}

SqlConnection sqlConnectionAt(const SqlConnectionEntry& entry, const Place& place) {
  SqlConnection connection;
  connection.clientHost = entry.clientHost.at(place);
  connection.dataSource = entry.dataSource.at(place);
  connection.application = entry.application.at(place);
  connection.networkAddress = entry.networkAddress.at(place);
  connection.userName = entry.userName.at(place);
  connection.status = entry.status.at(place);
  connection.periodMs = entry.periodMs.at(place);
  connection.totalTime = entry.totalTime.at(place);
  return connection;
}

}  // namespace

Information informationAt(const InformationValues& values, std::uint64_t refresh) {
  const Place place{refresh};
  return {values.flag.at(place), values.first.at(place), values.second.at(place),
          values.third.at(place), values.engineType.at(place)};
}

Version versionAt(const VersionValues& values, std::uint64_t refresh) {
  const Place place{refresh};
  return {values.major.at(place), values.minor.at(place), values.build.at(place)};
}

Usage usageAt(const UsageValues& values, std::uint64_t refresh) {
  const Place place{refresh};
  Usage usage;
  usage.users = gaugeAt(values.users, place);
  usage.files = gaugeAt(values.files, place);
  usage.handles = gaugeAt(values.handles, place);
  usage.transactions = gaugeAt(values.transactions, place);
  usage.clients = gaugeAt(values.clients, place);
  usage.workerThreads = gaugeAt(values.workerThreads, place);
  usage.locks = gaugeAt(values.locks, place);
  usage.dataMb = gaugeAt(values.dataMb, place);
  usage.sessions = gaugeAt(values.sessions, place);
  usage.upTimeSeconds = values.upTimeSeconds.at(place);
  return usage;
}

Communication communicationAt(const CommunicationValues& values, std::uint64_t refresh) {
  const Place place{refresh};
  Communication communication;
  communication.requests = values.requests.at(place);
  communication.counters[0] = values.counter1.at(place);
  communication.counters[1] = values.counter2.at(place);
  communication.counters[2] = values.counter3.at(place);
  communication.remoteSessions = gaugeAt(values.remoteSessions, place);
  communication.threads = gaugeAt(values.threads, place);
  communication.timeouts = values.timeouts.at(place);
  communication.recoveries = values.recoveries.at(place);
  communication.protocols = itemsOf<Protocol>(values.protocols, refresh, 1, protocolAt);
  return communication;
}

std::vector<OpenFile> filesAt(const std::vector<FileEntry>& entries, std::uint64_t refresh) {
  return itemsOf<OpenFile>(entries, refresh, 1, fileAt);
}

std::vector<Client> clientsAt(const std::vector<ClientEntry>& entries, std::uint64_t refresh) {
  return itemsOf<Client>(entries, refresh, 1, clientAt);
}

std::vector<SqlConnection> sqlConnectionsAt(const std::vector<SqlConnectionEntry>& entries,
                                            std::uint64_t refresh) {
  return itemsOf<SqlConnection>(entries, refresh, 1, sqlConnectionAt);
}

}  // namespace tal::sim
