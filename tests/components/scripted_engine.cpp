#include "tests/components/scripted_engine.h"

#include <gtest/gtest.h>

#include <cstring>

namespace component_tests {

ScriptedEngine& engine() {
  static ScriptedEngine s_engine;
  return s_engine;
}

ScriptedClient clientNamed(std::string_view idText, std::uint16_t task) {
  ScriptedClient client;
  setText(client.id.text, idText);
  client.id.task = task;
  return client;
}

namespace {

std::string textOf(std::int32_t number) { return std::to_string(number); }
std::string textOf(std::uint32_t number) { return std::to_string(number); }
std::string textOf(const char* text) { return text; }
std::string textOf(const void* pointer) { return pointer == nullptr ? "null" : "a pointer"; }
std::string textOf(const tagTALCLIENTID* client) {
  return std::string(client->text, strnlen(client->text, sizeof client->text)) + "/" +
         std::to_string(client->first) + "/" + std::to_string(client->task);
}

// Records a call and gives its status.
template <class First, class... More>
std::int16_t called(const std::string& function, First first, More... more) {
  const std::string call = function + "(" + textOf(first) + ((", " + textOf(more)) + ... + ")");
  engine().calls.push_back(call);
  engine().onCall(call);
  for (const std::string& name : {call, function}) {
    const auto found = engine().statuses.find(name);
    if (found != engine().statuses.end()) return found->second;
  }
  return 0;
}

std::uint32_t announced(const std::string& function, std::size_t length) {
  const auto found = engine().counts.find(function);
  return found == engine().counts.end() ? static_cast<std::uint32_t>(length) : found->second;
}

// Fills a structure, which the caller must have cleared.
template <class Structure>
void fill(Structure* structure, const Structure& answer) {
  static const Structure kCleared{};
  EXPECT_EQ(0, std::memcmp(structure, &kCleared, sizeof kCleared)) << "not cleared by the caller";
  *structure = answer;
}

template <class Structure>
std::int16_t fillFrom(const std::vector<Structure>& list, std::uint32_t index, std::int16_t status,
                      Structure* structure) {
  if (status != 0) return status;
  if (index >= list.size()) return TAL_STATUS_NO_ENTRY;
  fill(structure, list[index]);
  return 0;
}

const ScriptedFile& fileNamed(const std::string& name) {
  static const ScriptedFile kNone;
  for (const ScriptedFile& file : engine().files) {
    if (file.name == name) return file;
  }
  ADD_FAILURE() << "no such file: " << name;
  return kNone;
}

const ScriptedClient& clientOf(const tagTALCLIENTID& id) {
  static const ScriptedClient kNone;
  for (const ScriptedClient& client : engine().clients) {
    if (std::memcmp(&client.id, &id, sizeof id) == 0) return client;
  }
  ADD_FAILURE() << "no such client: " << textOf(&id);
  return kNone;
}

}  // namespace
}  // namespace component_tests

using component_tests::announced;
using component_tests::called;
using component_tests::clientOf;
using component_tests::engine;
using component_tests::fileNamed;
using component_tests::fill;
using component_tests::fillFrom;

int16_t TalStart(void* reserved) { return called("TalStart", reserved); }

int16_t TalStop(void* reserved) { return called("TalStop", reserved); }

// Gives a handle also with a status that is an error: a caller must not take it.
int16_t TalConnectServer(const char* server, const char* user, const char* password,
                         int32_t* handle) {
  *handle = engine().handle;
  return called("TalConnectServer", server, user, password);
}

int16_t TalDisconnect(int32_t handle) { return called("TalDisconnect", handle); }

int16_t TalGetEngineInformation(int32_t handle, uint8_t* flag, int32_t* first, int32_t* second,
                                int32_t* third, int32_t* engineType) {
  *flag = 1;
  *first = 101;
  *second = 102;
  *third = 103;
  *engineType = engine().engineType;
  return called("TalGetEngineInformation", handle);
}

int16_t TalGetZorbVersion(int32_t handle, TalVersion* version) {
  fill(version, engine().version);
  return called("TalGetZorbVersion", handle);
}

int16_t TalGetZorbUsageEx2(int32_t handle, TalUsage* usage) {
  fill(usage, engine().usage);
  return called("TalGetZorbUsageEx2", handle);
}

int16_t TalGetZorbCommStatEx(int32_t handle, TalCommStat* statistics) {
  fill(statistics, engine().communication);
  return called("TalGetZorbCommStatEx", handle);
}

int16_t TalGetOpenFilesData(int32_t handle, uint32_t* count) {
  *count = announced("TalGetOpenFilesData", engine().files.size());
  return called("TalGetOpenFilesData", handle);
}

int16_t TalGetOpenFileName(int32_t handle, uint32_t index, uint32_t* size, char* name) {
  EXPECT_EQ(*size, 1024U);
  const std::int16_t status = called("TalGetOpenFileName", handle, index);
  if (status != 0) return status;
  if (index >= engine().files.size()) return TAL_STATUS_NO_ENTRY;
  component_tests::setText(*reinterpret_cast<char(*)[TAL_NAME_SIZE]>(name),
                           engine().files[index].name);
  return 0;
}

int16_t TalGetFileInfo2(int32_t handle, const char* name, TalFileInfo* info) {
  fill(info, fileNamed(name).info);
  return called("TalGetFileInfo2", handle, name);
}

int16_t TalFreeOpenFilesData(int32_t handle) { return called("TalFreeOpenFilesData", handle); }

int16_t TalGetFileHandlesData(int32_t handle, const char* name, uint32_t* count) {
  *count = announced("TalGetFileHandlesData", fileNamed(name).handles.size());
  return called("TalGetFileHandlesData", handle, name);
}

int16_t TalGetFileHandleInfo(int32_t handle, const char* name, uint32_t index,
                             TalFileHandleInfo* info) {
  return fillFrom(fileNamed(name).handles, index,
                  called("TalGetFileHandleInfo", handle, name, index), info);
}

int16_t TalGetZorbClientsData(int32_t handle, uint32_t* count) {
  *count = announced("TalGetZorbClientsData", engine().clients.size());
  return called("TalGetZorbClientsData", handle);
}

int16_t TalGetZorbClientId(int32_t handle, uint32_t index, tagTALCLIENTID* client) {
  const std::int16_t status = called("TalGetZorbClientId", handle, index);
  if (status != 0) return status;
  if (index >= engine().clients.size()) return TAL_STATUS_NO_ENTRY;
  fill(client, engine().clients[index].id);
  return 0;
}

int16_t TalGetZorbClientInfo(int32_t handle, const tagTALCLIENTID* client, TalClientInfo* info) {
  fill(info, clientOf(*client).info);
  return called("TalGetZorbClientInfo", handle, client);
}

int16_t TalGetZorbClientHandlesData(int32_t handle, const tagTALCLIENTID* client, uint32_t* count) {
  *count = announced("TalGetZorbClientHandlesData", clientOf(*client).handles.size());
  return called("TalGetZorbClientHandlesData", handle, client);
}

int16_t TalGetZorbClientHandleInfo(int32_t handle, const tagTALCLIENTID* client, uint32_t index,
                                   TalClientHandleInfo* info) {
  return fillFrom(clientOf(*client).handles, index,
                  called("TalGetZorbClientHandleInfo", handle, client, index), info);
}

int16_t TalFreeZorbClientsData(int32_t handle) { return called("TalFreeZorbClientsData", handle); }

int16_t TalGetSQLConnectionsData(int32_t handle, uint32_t* count) {
  *count = announced("TalGetSQLConnectionsData", engine().connections.size());
  return called("TalGetSQLConnectionsData", handle);
}

int16_t TalGetSQLConnectionInfo2(int32_t handle, uint32_t index, TalSqlConnectionInfo* info) {
  return fillFrom(engine().connections, index, called("TalGetSQLConnectionInfo2", handle, index),
                  info);
}

int16_t TalFreeSQLConnectionsData(int32_t handle) {
  return called("TalFreeSQLConnectionsData", handle);
}
