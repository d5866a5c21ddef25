#include "tal/sim/scenario.h"

#include "tal/recording/fields.h"

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

// Sets a field of an engine's value from the scenario.
auto visitorAt(const Place& place) {
  return [place](const recording::Key& /*key*/, auto& field, const auto& values) {
    if constexpr (requires { values.maximum; }) {
      field = {values.current.at(place), values.peak.at(place), values.maximum.at(place)};
    } else {
      field = values.at(place);
    }
  };
}

Protocol protocolAt(const ProtocolEntry& entry, const Place& place) {
  Protocol protocol;
  recording::visitProtocol(visitorAt(place), protocol, entry);
  return protocol;
}

FileHandle fileHandleAt(const FileHandleEntry& entry, const Place& place) {
  FileHandle handle;
  recording::visitFileHandle(visitorAt(place), handle, entry);
  return handle;
}

ClientHandle clientHandleAt(const ClientHandleEntry& entry, const Place& place) {
  ClientHandle handle;
  recording::visitClientHandle(visitorAt(place), handle, entry);
  return handle;
}

OpenFile fileAt(const FileEntry& entry, const Place& place) {
  OpenFile file;
  recording::visitFile(visitorAt(place), file, entry);
  file.handles = itemsOf<FileHandle>(entry.handles, place.refresh, place.item, fileHandleAt);
  return file;
}

Client clientAt(const ClientEntry& entry, const Place& place) {
  Client client;
  recording::visitClient(visitorAt(place), client, entry);
  client.handles = itemsOf<ClientHandle>(entry.handles, place.refresh, place.item, clientHandleAt);
  return client;
}

SqlConnection sqlConnectionAt(const SqlConnectionEntry& entry, const Place& place) {
  SqlConnection connection;
  recording::visitSqlConnection(visitorAt(place), connection, entry);
  return connection;
}

}  // namespace

Information informationAt(const InformationValues& values, std::uint64_t refresh) {
  Information information;
  recording::visitInformation(visitorAt({refresh}), information, values);
  return information;
}

Version versionAt(const VersionValues& values, std::uint64_t refresh) {
  Version version;
  recording::visitVersion(visitorAt({refresh}), version, values);
  return version;
}

Usage usageAt(const UsageValues& values, std::uint64_t refresh) {
  Usage usage;
  recording::visitUsage(visitorAt({refresh}), usage, values);
  return usage;
}

Communication communicationAt(const CommunicationValues& values, std::uint64_t refresh) {
  Communication communication;
  recording::visitCommunication(visitorAt({refresh}), communication, values);
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
