// The 23 functions of the interface; each is one statement. Different connections may be used by
// different threads at the same time, one connection by one thread at a time; TalStart and TalStop
// come first and last.
#include <cstdint>
#include <string>

#include "engine/tal.h"
#include "tal/interface/boundary.h"
#include "tal/interface/layout.h"
#include "tal/interface/library.h"
#include "tal/text.h"

using tal::Call;
using tal::interface::credential;
using tal::interface::entryAt;
using tal::interface::fileName;
using tal::interface::fill;
using tal::interface::guarded;
using tal::interface::library;
using tal::interface::required;
using tal::interface::ServedEngine;

namespace {

// Fills `out` with what `ask` gets from the engine. Does not ask if `out` is null.
template <typename Out, typename Ask>
std::int16_t answered(std::int32_t handle, Call call, Out* out, const Ask& ask) {
  return guarded([&] {
    ServedEngine& engine = library().serving(handle, call);
    Out& place = required(out);
    fill(place, ask(engine));
  });
}

using Action = void (ServedEngine::*)();

std::int16_t done(std::int32_t handle, Call call, Action action) {
  return guarded([&] { (library().serving(handle, call).*action)(); });
}

void putInformation(ServedEngine& from, std::uint8_t* flag, std::int32_t* first,
                    std::int32_t* second, std::int32_t* third, std::int32_t* engineType) {
  for (const std::int32_t* place : {first, second, third, engineType}) required(place);
  std::uint8_t& flagPlace = required(flag);
  const tal::Information information = from.engine().information();
  flagPlace = information.flag;
  *first = information.first;
  *second = information.second;
  *third = information.third;
  *engineType = information.engineType;
}

// Writes into `size` the length of the name in the buffer.
void putName(ServedEngine& from, std::uint32_t index, std::uint32_t* size, char* buffer) {
  std::uint32_t& place = required(size);
  char& first = required(buffer);
  if (place == 0) throw tal::Failure(tal::Status::kBadArgument);
  fill(place, tal::putText({&first, place}, from.files().at(index).name));
}

void connect(const char* server, const char* user, const char* password, std::int32_t* handle) {
  library().requireStarted();
  std::int32_t& place = required(handle);
  place =
      library().connect(credential(server), {std::string(credential(user)), credential(password)});
}

}  // namespace

int16_t TalStart(void* /*reserved*/) {
  return guarded([] { library().start(); });
}

int16_t TalStop(void* /*reserved*/) {
  return guarded([] { library().stop(); });
}

int16_t TalConnectServer(const char* server, const char* user, const char* password,
                         int32_t* handle) {
  return guarded([&] { connect(server, user, password, handle); });
}

int16_t TalDisconnect(int32_t handle) {
  return guarded([&] { library().disconnect(handle); });
}

int16_t TalGetEngineInformation(int32_t handle, uint8_t* flag, int32_t* first, int32_t* second,
                                int32_t* third, int32_t* engineType) {
  return guarded([&] {
    putInformation(library().serving(handle, Call::kGetEngineInformation), flag, first, second,
                   third, engineType);
  });
}

int16_t TalGetZorbVersion(int32_t handle, TalVersion* version) {
  return answered(handle, Call::kGetZorbVersion, version,
                  [](ServedEngine& from) { return from.engine().version(); });
}

int16_t TalGetZorbUsageEx2(int32_t handle, TalUsage* usage) {
  return answered(handle, Call::kGetZorbUsageEx2, usage,
                  [](ServedEngine& from) { return from.engine().usage(); });
}

int16_t TalGetZorbCommStatEx(int32_t handle, TalCommStat* statistics) {
  return answered(handle, Call::kGetZorbCommStatEx, statistics,
                  [](ServedEngine& from) { return from.engine().communication(); });
}

int16_t TalGetOpenFilesData(int32_t handle, uint32_t* count) {
  return answered(handle, Call::kGetOpenFilesData, count,
                  [](ServedEngine& from) { return from.takeFiles(); });
}

int16_t TalGetOpenFileName(int32_t handle, uint32_t index, uint32_t* size, char* name) {
  return guarded(
      [&] { putName(library().serving(handle, Call::kGetOpenFileName), index, size, name); });
}

int16_t TalGetFileInfo2(int32_t handle, const char* name, TalFileInfo* info) {
  return answered(handle, Call::kGetFileInfo2, info, [&](ServedEngine& from) -> decltype(auto) {
    return from.files().find(fileName(name));
  });
}

int16_t TalFreeOpenFilesData(int32_t handle) {
  return done(handle, Call::kFreeOpenFilesData, &ServedEngine::releaseFiles);
}

int16_t TalGetFileHandlesData(int32_t handle, const char* name, uint32_t* count) {
  return answered(handle, Call::kGetFileHandlesData, count, [&](ServedEngine& from) {
    return from.files().find(fileName(name)).handles.size();
  });
}

int16_t TalGetFileHandleInfo(int32_t handle, const char* name, uint32_t index,
                             TalFileHandleInfo* info) {
  return answered(handle, Call::kGetFileHandleInfo, info,
                  [&](ServedEngine& from) -> decltype(auto) {
                    return entryAt(from.files().find(fileName(name)).handles, index);
                  });
}

int16_t TalGetZorbClientsData(int32_t handle, uint32_t* count) {
  return answered(handle, Call::kGetZorbClientsData, count,
                  [](ServedEngine& from) { return from.takeClients(); });
}

int16_t TalGetZorbClientId(int32_t handle, uint32_t index, tagTALCLIENTID* client) {
  return answered(handle, Call::kGetZorbClientId, client,
                  [&](ServedEngine& from) -> decltype(auto) { return from.clients().at(index); });
}

int16_t TalGetZorbClientInfo(int32_t handle, const tagTALCLIENTID* client, TalClientInfo* info) {
  return answered(
      handle, Call::kGetZorbClientInfo, info,
      [&](ServedEngine& from) -> decltype(auto) { return from.clients().find(required(client)); });
}

int16_t TalGetZorbClientHandlesData(int32_t handle, const tagTALCLIENTID* client, uint32_t* count) {
  return answered(handle, Call::kGetZorbClientHandlesData, count, [&](ServedEngine& from) {
    return from.clients().find(required(client)).handles.size();
  });
}

int16_t TalGetZorbClientHandleInfo(int32_t handle, const tagTALCLIENTID* client, uint32_t index,
                                   TalClientHandleInfo* info) {
  return answered(handle, Call::kGetZorbClientHandleInfo, info,
                  [&](ServedEngine& from) -> decltype(auto) {
                    return entryAt(from.clients().find(required(client)).handles, index);
                  });
}

int16_t TalFreeZorbClientsData(int32_t handle) {
  return done(handle, Call::kFreeZorbClientsData, &ServedEngine::releaseClients);
}

int16_t TalGetSQLConnectionsData(int32_t handle, uint32_t* count) {
  return answered(handle, Call::kGetSQLConnectionsData, count,
                  [](ServedEngine& from) { return from.takeSqlConnections(); });
}

int16_t TalGetSQLConnectionInfo2(int32_t handle, uint32_t index, TalSqlConnectionInfo* info) {
  return answered(
      handle, Call::kGetSQLConnectionInfo2, info,
      [&](ServedEngine& from) -> decltype(auto) { return entryAt(from.sqlConnections(), index); });
}

int16_t TalFreeSQLConnectionsData(int32_t handle) {
  return done(handle, Call::kFreeSQLConnectionsData, &ServedEngine::releaseSqlConnections);
}
