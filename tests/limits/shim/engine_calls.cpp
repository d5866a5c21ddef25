// The engine's functions, each handed on to the engine library behind this one and counted.
#include <dlfcn.h>

#include <atomic>
#include <cstdint>

#include "engine/tal.h"
#include "tests/limits/shim/counts.h"

namespace {

constexpr std::int16_t kSuccess = 0;

template <typename... Parameters>
std::int16_t handOn(std::int16_t (*)(Parameters...), const char* name, Parameters... parameters) {
  ++limits::counts().engineCalls;
  using Function = std::int16_t (*)(Parameters...);
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name))(parameters...);
}

std::int16_t begun(std::atomic<std::int64_t>& count, std::int16_t status) {
  if (status == kSuccess) ++count;
  return status;
}

std::int16_t ended(std::atomic<std::int64_t>& count, std::int16_t status) {
  --count;
  return status;
}

}  // namespace

int16_t TalStart(void* reserved) {
  return begun(limits::counts().starts, handOn(TalStart, "TalStart", reserved));
}

int16_t TalStop(void* reserved) {
  return ended(limits::counts().starts, handOn(TalStop, "TalStop", reserved));
}

int16_t TalConnectServer(const char* server, const char* user, const char* password,
                         int32_t* handle) {
  return begun(limits::counts().connections,
               handOn(TalConnectServer, "TalConnectServer", server, user, password, handle));
}

int16_t TalDisconnect(int32_t handle) {
  return ended(limits::counts().connections, handOn(TalDisconnect, "TalDisconnect", handle));
}

int16_t TalGetEngineInformation(int32_t handle, uint8_t* flag, int32_t* first, int32_t* second,
                                int32_t* third, int32_t* engineType) {
  return handOn(TalGetEngineInformation, "TalGetEngineInformation", handle, flag, first, second,
                third, engineType);
}

int16_t TalGetZorbVersion(int32_t handle, TalVersion* version) {
  return handOn(TalGetZorbVersion, "TalGetZorbVersion", handle, version);
}

int16_t TalGetZorbUsageEx2(int32_t handle, TalUsage* usage) {
  return handOn(TalGetZorbUsageEx2, "TalGetZorbUsageEx2", handle, usage);
}

int16_t TalGetZorbCommStatEx(int32_t handle, TalCommStat* statistics) {
  return handOn(TalGetZorbCommStatEx, "TalGetZorbCommStatEx", handle, statistics);
}

int16_t TalGetOpenFilesData(int32_t handle, uint32_t* count) {
  return begun(limits::counts().snapshots,
               handOn(TalGetOpenFilesData, "TalGetOpenFilesData", handle, count));
}

int16_t TalGetOpenFileName(int32_t handle, uint32_t index, uint32_t* size, char* name) {
  return handOn(TalGetOpenFileName, "TalGetOpenFileName", handle, index, size, name);
}

int16_t TalGetFileInfo2(int32_t handle, const char* name, TalFileInfo* info) {
  return handOn(TalGetFileInfo2, "TalGetFileInfo2", handle, name, info);
}

int16_t TalFreeOpenFilesData(int32_t handle) {
  return ended(limits::counts().snapshots,
               handOn(TalFreeOpenFilesData, "TalFreeOpenFilesData", handle));
}

int16_t TalGetFileHandlesData(int32_t handle, const char* name, uint32_t* count) {
  return handOn(TalGetFileHandlesData, "TalGetFileHandlesData", handle, name, count);
}

int16_t TalGetFileHandleInfo(int32_t handle, const char* name, uint32_t index,
                             TalFileHandleInfo* info) {
  return handOn(TalGetFileHandleInfo, "TalGetFileHandleInfo", handle, name, index, info);
}

int16_t TalGetZorbClientsData(int32_t handle, uint32_t* count) {
  return begun(limits::counts().snapshots,
               handOn(TalGetZorbClientsData, "TalGetZorbClientsData", handle, count));
}

int16_t TalGetZorbClientId(int32_t handle, uint32_t index, tagTALCLIENTID* client) {
  return handOn(TalGetZorbClientId, "TalGetZorbClientId", handle, index, client);
}

int16_t TalGetZorbClientInfo(int32_t handle, const tagTALCLIENTID* client, TalClientInfo* info) {
  return handOn(TalGetZorbClientInfo, "TalGetZorbClientInfo", handle, client, info);
}

int16_t TalGetZorbClientHandlesData(int32_t handle, const tagTALCLIENTID* client, uint32_t* count) {
  return handOn(TalGetZorbClientHandlesData, "TalGetZorbClientHandlesData", handle, client, count);
}

int16_t TalGetZorbClientHandleInfo(int32_t handle, const tagTALCLIENTID* client, uint32_t index,
                                   TalClientHandleInfo* info) {
  return handOn(TalGetZorbClientHandleInfo, "TalGetZorbClientHandleInfo", handle, client, index,
                info);
}

int16_t TalFreeZorbClientsData(int32_t handle) {
  return ended(limits::counts().snapshots,
               handOn(TalFreeZorbClientsData, "TalFreeZorbClientsData", handle));
}

int16_t TalGetSQLConnectionsData(int32_t handle, uint32_t* count) {
  return begun(limits::counts().snapshots,
               handOn(TalGetSQLConnectionsData, "TalGetSQLConnectionsData", handle, count));
}

int16_t TalGetSQLConnectionInfo2(int32_t handle, uint32_t index, TalSqlConnectionInfo* info) {
  return handOn(TalGetSQLConnectionInfo2, "TalGetSQLConnectionInfo2", handle, index, info);
}

int16_t TalFreeSQLConnectionsData(int32_t handle) {
  return ended(limits::counts().snapshots,
               handOn(TalFreeSQLConnectionsData, "TalFreeSQLConnectionsData", handle));
}
