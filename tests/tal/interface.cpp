#include "tests/tal/interface.h"

#include <gtest/gtest.h>

#include <cstring>

namespace tal::test {
namespace {

constexpr std::int32_t kNoHandle = -2;

template <typename Take, typename Read, typename Release>
auto listed(std::int32_t handle, Take take, Read read, Release release) {
  std::uint32_t count = 0;
  EXPECT_EQ(take(handle, &count), 0);
  auto list = read(handle, count);
  EXPECT_EQ(release(handle), 0);
  return list;
}

ListedFile readFile(std::int32_t handle, std::uint32_t index) {
  ListedFile file{};
  char name[TAL_NAME_SIZE] = {};
  std::uint32_t size = sizeof(name);
  EXPECT_EQ(TalGetOpenFileName(handle, index, &size, name), 0);
  EXPECT_EQ(size, std::strlen(name));
  file.name = name;
  EXPECT_EQ(TalGetFileInfo2(handle, name, &file.info), 0);
  std::uint32_t count = 0;
  EXPECT_EQ(TalGetFileHandlesData(handle, name, &count), 0);
  file.handles.resize(count);
  for (std::uint32_t at = 0; at < count; ++at) {
    EXPECT_EQ(TalGetFileHandleInfo(handle, name, at, &file.handles[at]), 0);
  }
  TalFileHandleInfo beyond{};
  EXPECT_EQ(TalGetFileHandleInfo(handle, name, count, &beyond), TAL_STATUS_NO_ENTRY);
  return file;
}

ListedClient readClient(std::int32_t handle, std::uint32_t index) {
  ListedClient client{};
  EXPECT_EQ(TalGetZorbClientId(handle, index, &client.id), 0);
  EXPECT_EQ(TalGetZorbClientInfo(handle, &client.id, &client.info), 0);
  std::uint32_t count = 0;
  EXPECT_EQ(TalGetZorbClientHandlesData(handle, &client.id, &count), 0);
  client.handles.resize(count);
  for (std::uint32_t at = 0; at < count; ++at) {
    EXPECT_EQ(TalGetZorbClientHandleInfo(handle, &client.id, at, &client.handles[at]), 0);
  }
  TalClientHandleInfo beyond{};
  EXPECT_EQ(TalGetZorbClientHandleInfo(handle, &client.id, count, &beyond), TAL_STATUS_NO_ENTRY);
  return client;
}

const char* kAnyName = "any name";
const tagTALCLIENTID kAnyClient{};

}  // namespace

Started::Started() { EXPECT_EQ(TalStart(nullptr), 0); }

Started::~Started() { TalStop(nullptr); }

std::int16_t connect(const Target& target, std::int32_t& handle) {
  return TalConnectServer(target.server.c_str(), target.user.c_str(), target.password.c_str(),
                          &handle);
}

std::int32_t connected(const Target& target) {
  std::int32_t handle = kNoHandle;
  EXPECT_EQ(connect(target, handle), 0) << target.server;
  return handle;
}

std::vector<ListedFile> readFiles(std::int32_t handle, std::uint32_t count) {
  std::vector<ListedFile> files;
  for (std::uint32_t index = 0; index < count; ++index) files.push_back(readFile(handle, index));
  return files;
}

std::vector<ListedClient> readClients(std::int32_t handle, std::uint32_t count) {
  std::vector<ListedClient> clients;
  for (std::uint32_t index = 0; index < count; ++index) {
    clients.push_back(readClient(handle, index));
  }
  return clients;
}

std::vector<TalSqlConnectionInfo> readSqlConnections(std::int32_t handle, std::uint32_t count) {
  std::vector<TalSqlConnectionInfo> connections(count);
  for (std::uint32_t index = 0; index < count; ++index) {
    EXPECT_EQ(TalGetSQLConnectionInfo2(handle, index, &connections[index]), 0);
  }
  return connections;
}

std::vector<ListedFile> listFiles(std::int32_t handle) {
  return listed(handle, TalGetOpenFilesData, readFiles, TalFreeOpenFilesData);
}

std::vector<ListedClient> listClients(std::int32_t handle) {
  return listed(handle, TalGetZorbClientsData, readClients, TalFreeZorbClientsData);
}

std::vector<TalSqlConnectionInfo> listSqlConnections(std::int32_t handle) {
  return listed(handle, TalGetSQLConnectionsData, readSqlConnections, TalFreeSQLConnectionsData);
}

std::string bytesOf(const std::vector<ListedFile>& files) {
  std::string bytes;
  for (const ListedFile& file : files) {
    bytes.append(file.name).append(bytesOf(file.info));
    for (const TalFileHandleInfo& handle : file.handles) bytes.append(bytesOf(handle));
  }
  return bytes;
}

std::string bytesOf(const std::vector<ListedClient>& clients) {
  std::string bytes;
  for (const ListedClient& client : clients) {
    bytes.append(bytesOf(client.id)).append(bytesOf(client.info));
    for (const TalClientHandleInfo& handle : client.handles) bytes.append(bytesOf(handle));
  }
  return bytes;
}

std::string bytesOf(const std::vector<TalSqlConnectionInfo>& connections) {
  std::string bytes;
  for (const TalSqlConnectionInfo& connection : connections) bytes.append(bytesOf(connection));
  return bytes;
}

const std::vector<NamedCall>& callsOnASnapshot() {
  static const std::vector<NamedCall> kCalls = {
      {"TalGetOpenFileName",
       [](std::int32_t handle) {
         char name[TAL_NAME_SIZE];
         std::uint32_t size = sizeof(name);
         return TalGetOpenFileName(handle, 0, &size, name);
       }                                                                                              },
      {"TalGetFileInfo2",
       [](std::int32_t handle) {
         TalFileInfo info;
         return TalGetFileInfo2(handle, kAnyName, &info);
       }                                                                                              },
      {"TalFreeOpenFilesData",        [](std::int32_t handle) { return TalFreeOpenFilesData(handle); }},
      {"TalGetFileHandlesData",
       [](std::int32_t handle) {
         std::uint32_t count;
         return TalGetFileHandlesData(handle, kAnyName, &count);
       }                                                                                              },
      {"TalGetFileHandleInfo",
       [](std::int32_t handle) {
         TalFileHandleInfo info;
         return TalGetFileHandleInfo(handle, kAnyName, 0, &info);
       }                                                                                              },
      {"TalGetZorbClientId",
       [](std::int32_t handle) {
         tagTALCLIENTID id;
         return TalGetZorbClientId(handle, 0, &id);
       }                                                                                              },
      {"TalGetZorbClientInfo",
       [](std::int32_t handle) {
         TalClientInfo info;
         return TalGetZorbClientInfo(handle, &kAnyClient, &info);
       }                                                                                              },
      {"TalGetZorbClientHandlesData",
       [](std::int32_t handle) {
         std::uint32_t count;
         return TalGetZorbClientHandlesData(handle, &kAnyClient, &count);
       }                                                                                              },
      {"TalGetZorbClientHandleInfo",
       [](std::int32_t handle) {
         TalClientHandleInfo info;
         return TalGetZorbClientHandleInfo(handle, &kAnyClient, 0, &info);
       }                                                                                              },
      {"TalFreeZorbClientsData",
       [](std::int32_t handle) { return TalFreeZorbClientsData(handle); }                             },
      {"TalGetSQLConnectionInfo2",
       [](std::int32_t handle) {
         TalSqlConnectionInfo info;
         return TalGetSQLConnectionInfo2(handle, 0, &info);
       }                                                                                              },
      {"TalFreeSQLConnectionsData",
       [](std::int32_t handle) { return TalFreeSQLConnectionsData(handle); }                          },
  };
  return kCalls;
}

const std::vector<NamedCall>& callsOnAHandle() {
  static const std::vector<NamedCall> kCalls = [] {
    std::vector<NamedCall> calls = {
        {"TalDisconnect",            [](std::int32_t handle) { return TalDisconnect(handle); }},
        {"TalGetEngineInformation",
         [](std::int32_t handle) {
           std::uint8_t flag;
           std::int32_t numbers[4];
           return TalGetEngineInformation(handle, &flag, &numbers[0], &numbers[1], &numbers[2],
                                          &numbers[3]);
         }                                                                                    },
        {"TalGetZorbVersion",
         [](std::int32_t handle) {
           TalVersion version;
           return TalGetZorbVersion(handle, &version);
         }                                                                                    },
        {"TalGetZorbUsageEx2",
         [](std::int32_t handle) {
           TalUsage usage;
           return TalGetZorbUsageEx2(handle, &usage);
         }                                                                                    },
        {"TalGetZorbCommStatEx",
         [](std::int32_t handle) {
           TalCommStat statistics;
           return TalGetZorbCommStatEx(handle, &statistics);
         }                                                                                    },
        {"TalGetOpenFilesData",
         [](std::int32_t handle) {
           std::uint32_t count;
           return TalGetOpenFilesData(handle, &count);
         }                                                                                    },
        {"TalGetZorbClientsData",
         [](std::int32_t handle) {
           std::uint32_t count;
           return TalGetZorbClientsData(handle, &count);
         }                                                                                    },
        {"TalGetSQLConnectionsData",
         [](std::int32_t handle) {
           std::uint32_t count;
           return TalGetSQLConnectionsData(handle, &count);
         }                                                                                    },
    };
    calls.insert(calls.end(), callsOnASnapshot().begin(), callsOnASnapshot().end());
    return calls;
  }();
  return kCalls;
}

bool isClean(const char* field, std::size_t size) {
  const void* const end = std::memchr(field, '\0', size);
  if (end == nullptr) return false;
  for (const char* at = field; at != end; ++at) {
    const auto byte = static_cast<unsigned char>(*at);
    const auto next = static_cast<unsigned char>(at[1]);
    if (byte < 0x20 || byte == 0x7f) return false;
    if (byte == 0xc2 && next >= 0x80 && next <= 0x9f) return false;
  }
  return true;
}

}  // namespace tal::test
