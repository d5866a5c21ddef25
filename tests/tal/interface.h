// The engine interface as tests drive it: connections that close themselves, and whole lists.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/tal.h"
#include "tal/status.h"

namespace tal::test {

constexpr std::int16_t code(Status status) { return static_cast<std::int16_t>(status); }

// Where to connect to, and as whom.
struct Target {
  std::string server;
  std::string user;
  std::string password;
};

// A started library, stopped at the end of the scope unless the test did so itself.
class Started {
 public:
  Started();
  Started(const Started&) = delete;
  Started& operator=(const Started&) = delete;
  ~Started();
};

// TalConnectServer.
std::int16_t connect(const Target& target, std::int32_t& handle);

// A connection that must come about: a test that cannot connect fails and gets a handle that is
// unknown to the library.
std::int32_t connected(const Target& target);

struct ListedFile {
  std::string name;
  TalFileInfo info;
  std::vector<TalFileHandleInfo> handles;
};

struct ListedClient {
  tagTALCLIENTID id;
  TalClientInfo info;
  std::vector<TalClientHandleInfo> handles;
};

// Each reads what the present snapshot holds of `count` entries, look-ups included, and expects
// every call to succeed.
std::vector<ListedFile> readFiles(std::int32_t handle, std::uint32_t count);
std::vector<ListedClient> readClients(std::int32_t handle, std::uint32_t count);
std::vector<TalSqlConnectionInfo> readSqlConnections(std::int32_t handle, std::uint32_t count);

// Each takes a snapshot, reads it and releases it.
std::vector<ListedFile> listFiles(std::int32_t handle);
std::vector<ListedClient> listClients(std::int32_t handle);
std::vector<TalSqlConnectionInfo> listSqlConnections(std::int32_t handle);

// The bytes of plain structures, for comparing them.
template <typename Structure>
std::string_view bytesOf(const Structure& structure) {
  return {reinterpret_cast<const char*>(&structure), sizeof(structure)};
}

// All that was listed as one text of bytes, so that two lists can be compared.
std::string bytesOf(const std::vector<ListedFile>& files);
std::string bytesOf(const std::vector<ListedClient>& clients);
std::string bytesOf(const std::vector<TalSqlConnectionInfo>& connections);

// The calls that need a handle, with good arguments except the handle.
struct NamedCall {
  const char* name;
  std::function<std::int16_t(std::int32_t handle)> call;
};
const std::vector<NamedCall>& callsOnAHandle();

// Those of them that answer from a snapshot, and those that release one.
const std::vector<NamedCall>& callsOnASnapshot();

// Whether a text of the interface is closed inside its field and free of control characters.
bool isClean(const char* field, std::size_t size);

template <std::size_t Size>
bool isClean(const char (&field)[Size]) {
  return isClean(field, Size);
}

}  // namespace tal::test
