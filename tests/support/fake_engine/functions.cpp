#include <dlfcn.h>

#include "tests/support/fake_engine/call.h"

namespace fake_engine {
namespace {

void note(Call& /*call*/, void* /*reserved*/) {}
void note(Call& call, std::int32_t handle) { call.handle = handle; }
void note(Call& call, std::uint32_t index) { call.index = index; }
void note(Call& call, const tagTALCLIENTID* client) { call.client = client; }
void note(Call& call, std::uint32_t* count) { call.count = count; }
void note(Call& call, char* name) { call.name = name; }

void note(Call& call, const char* text) {
  int next = 0;
  while (call.texts[next] != nullptr) ++next;
  call.texts[next] = text;
}

// If a function has several numbers, the last one is the one that matters.
void note(Call& call, std::int32_t* number) {
  *number = -1;
  call.number = number;
}
void note(Call& /*call*/, std::uint8_t* flag) { *flag = 1; }

template <typename Filled>
void note(Call& call, Filled* structure) {
  call.structure = structure;
}

template <typename Ask>
class NextLibrary final : public Next {
 public:
  explicit NextLibrary(const Ask& ask) : ask_(ask) {}
  std::int16_t operator()() const override { return ask_(); }

 private:
  const Ask& ask_;
};

template <typename... Parameters>
std::int16_t served(std::int16_t (*)(Parameters...), const char* name, Kind kind, List list,
                    Parameters... parameters) {
  Call call{.function = name, .kind = kind, .list = list};
  (note(call, parameters), ...);
  return serve(call, NextLibrary([&] {
                 using Function = std::int16_t (*)(Parameters...);
                 return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name))(parameters...);
               }));
}

}  // namespace
}  // namespace fake_engine

using fake_engine::served;
using enum fake_engine::Kind;
using enum fake_engine::List;

extern "C" {

int16_t TalStart(void* reserved) { return served(TalStart, "TalStart", kStart, kNone, reserved); }

int16_t TalStop(void* reserved) { return served(TalStop, "TalStop", kStop, kNone, reserved); }

int16_t TalConnectServer(const char* server, const char* user, const char* password,
                         int32_t* handle) {
  return served(TalConnectServer, "TalConnectServer", kConnect, kNone, server, user, password,
                handle);
}

int16_t TalDisconnect(int32_t handle) {
  return served(TalDisconnect, "TalDisconnect", kDisconnect, kNone, handle);
}

int16_t TalGetEngineInformation(int32_t handle, uint8_t* flag, int32_t* first, int32_t* second,
                                int32_t* third, int32_t* engineType) {
  return served(TalGetEngineInformation, "TalGetEngineInformation", kAsk, kNone, handle, flag,
                first, second, third, engineType);
}

int16_t TalGetZorbVersion(int32_t handle, TalVersion* version) {
  return served(TalGetZorbVersion, "TalGetZorbVersion", kAsk, kNone, handle, version);
}

int16_t TalGetZorbUsageEx2(int32_t handle, TalUsage* usage) {
  return served(TalGetZorbUsageEx2, "TalGetZorbUsageEx2", kAsk, kNone, handle, usage);
}

int16_t TalGetZorbCommStatEx(int32_t handle, TalCommStat* statistics) {
  return served(TalGetZorbCommStatEx, "TalGetZorbCommStatEx", kAsk, kNone, handle, statistics);
}

int16_t TalGetOpenFilesData(int32_t handle, uint32_t* count) {
  return served(TalGetOpenFilesData, "TalGetOpenFilesData", kTake, kFiles, handle, count);
}

int16_t TalGetOpenFileName(int32_t handle, uint32_t index, uint32_t* size, char* name) {
  return served(TalGetOpenFileName, "TalGetOpenFileName", kEntry, kFiles, handle, index, size,
                name);
}

int16_t TalGetFileInfo2(int32_t handle, const char* name, TalFileInfo* info) {
  return served(TalGetFileInfo2, "TalGetFileInfo2", kAsk, kFiles, handle, name, info);
}

int16_t TalFreeOpenFilesData(int32_t handle) {
  return served(TalFreeOpenFilesData, "TalFreeOpenFilesData", kRelease, kFiles, handle);
}

int16_t TalGetFileHandlesData(int32_t handle, const char* name, uint32_t* count) {
  return served(TalGetFileHandlesData, "TalGetFileHandlesData", kTake, kFiles, handle, name, count);
}

int16_t TalGetFileHandleInfo(int32_t handle, const char* name, uint32_t index,
                             TalFileHandleInfo* info) {
  return served(TalGetFileHandleInfo, "TalGetFileHandleInfo", kEntry, kFiles, handle, name, index,
                info);
}

int16_t TalGetZorbClientsData(int32_t handle, uint32_t* count) {
  return served(TalGetZorbClientsData, "TalGetZorbClientsData", kTake, kClients, handle, count);
}

int16_t TalGetZorbClientId(int32_t handle, uint32_t index, tagTALCLIENTID* client) {
  return served(TalGetZorbClientId, "TalGetZorbClientId", kEntry, kClients, handle, index, client);
}

int16_t TalGetZorbClientInfo(int32_t handle, const tagTALCLIENTID* client, TalClientInfo* info) {
  return served(TalGetZorbClientInfo, "TalGetZorbClientInfo", kAsk, kClients, handle, client, info);
}

int16_t TalGetZorbClientHandlesData(int32_t handle, const tagTALCLIENTID* client, uint32_t* count) {
  return served(TalGetZorbClientHandlesData, "TalGetZorbClientHandlesData", kTake, kClients, handle,
                client, count);
}

int16_t TalGetZorbClientHandleInfo(int32_t handle, const tagTALCLIENTID* client, uint32_t index,
                                   TalClientHandleInfo* info) {
  return served(TalGetZorbClientHandleInfo, "TalGetZorbClientHandleInfo", kEntry, kClients, handle,
                client, index, info);
}

int16_t TalFreeZorbClientsData(int32_t handle) {
  return served(TalFreeZorbClientsData, "TalFreeZorbClientsData", kRelease, kClients, handle);
}

int16_t TalGetSQLConnectionsData(int32_t handle, uint32_t* count) {
  return served(TalGetSQLConnectionsData, "TalGetSQLConnectionsData", kTake, kConnections, handle,
                count);
}

int16_t TalGetSQLConnectionInfo2(int32_t handle, uint32_t index, TalSqlConnectionInfo* info) {
  return served(TalGetSQLConnectionInfo2, "TalGetSQLConnectionInfo2", kEntry, kConnections, handle,
                index, info);
}

int16_t TalFreeSQLConnectionsData(int32_t handle) {
  return served(TalFreeSQLConnectionsData, "TalFreeSQLConnectionsData", kRelease, kConnections,
                handle);
}

}  // extern "C"
