// The functions of the interface over the fuzzed engine.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "tests/fuzz/fuzzed_engine.h"
#include "tests/fuzz/target.h"

namespace fuzzing {
namespace {

// The releasing calls give a status that nobody may care about.
constexpr std::int16_t kIgnored = -1;

std::span<char> bytesOf(auto* structure) {
  return {reinterpret_cast<char*>(structure), sizeof *structure};
}

void requireHandle(std::int32_t handle) {
  require(handle == engine().handle, "the engine is asked by its handle");
}

// No byte of a field that is printed, up to its NUL, means something in JSON.
template <std::size_t kSize>
void note(const char (&field)[kSize]) {
  const std::string_view text(field, strnlen(field, kSize));
  const bool isPlain = std::ranges::all_of(
      text, [](char byte) { return byte >= ' ' && byte < '\x7f' && byte != '"' && byte != '\\'; });
  engine().isWellFormed = engine().isWellFormed && isPlain;
}

void noteFlag(std::uint8_t flag) {
  engine().isWellFormed = engine().isWellFormed && (flag == 'Y' || flag == 'N');
}

void noteOpenMode(std::uint8_t mode) {
  constexpr std::string_view kModes = "\xff\xfe\xfd\xfc\xf8\xf7\xf6\xf5\xf4\xf0\xef\xee";
  const bool isWord = mode == 0 || kModes.find(static_cast<char>(mode)) != std::string_view::npos;
  engine().isWellFormed = engine().isWellFormed && isWord;
}

template <class Structure>
std::int16_t give(const Answer& answer, Structure* structure) {
  if (answer.status == 0) fill(bytesOf(structure), answer.bytes);
  return answer.status;
}

std::int16_t take(std::int32_t handle, Snapshot& snapshot, std::uint32_t* count) {
  requireHandle(handle);
  require(!snapshot.isTaken, "a snapshot is released before the next one is taken");
  const Answer answer = engine().next();
  *count = static_cast<std::uint32_t>(numberIn(answer.bytes, UINT32_MAX));
  snapshot = {answer.status == 0, *count};
  return answer.status;
}

std::int16_t release(std::int32_t handle, Snapshot& snapshot) {
  requireHandle(handle);
  require(snapshot.isTaken, "only what was taken is released");
  snapshot.isTaken = false;
  return kIgnored;
}

void requireEntry(std::int32_t handle, const Snapshot& snapshot, std::uint32_t index) {
  requireHandle(handle);
  require(snapshot.isTaken && index < snapshot.count, "only entries that were announced are read");
}

void requireFile(std::int32_t handle, const char* name) {
  requireHandle(handle);
  require(engine().files.isTaken && name == engine().fileName,
          "a file is asked for by the name that it was given");
}

void requireClient(std::int32_t handle, const tagTALCLIENTID* client) {
  requireHandle(handle);
  require(engine().clients.isTaken && std::memcmp(client, &engine().client, sizeof *client) == 0,
          "a client is asked for by the identifier that it was given");
}

std::int16_t countHandles(std::uint32_t* count) {
  const Answer answer = engine().next();
  *count = static_cast<std::uint32_t>(numberIn(answer.bytes, UINT32_MAX));
  return answer.status;
}

void noteProtocols(const TalCommStat& statistics) {
  const std::size_t count = std::min<std::size_t>(statistics.protocolCount, TAL_PROTOCOL_COUNT);
  for (const TalProtocol& protocol : std::span(statistics.protocols).first(count)) {
    const bool isNamed = protocol.code == 1 || protocol.code == 4 || protocol.code == 12;
    if (isNamed) ++engine().namedProtocols;
  }
}

}  // namespace
}  // namespace fuzzing

using fuzzing::Answer;
using fuzzing::engine;
using fuzzing::require;

int16_t TalStart(void* reserved) {
  require(reserved == nullptr && !engine().isStarted, "the library is started once");
  engine().isStarted = true;
  return engine().next().status;
}

int16_t TalStop(void* /*reserved*/) {
  ++engine().stops;
  return fuzzing::kIgnored;
}

// Gives a handle also with a status that is an error: a caller must not take it.
int16_t TalConnectServer(const char* server, const char* user, const char* password,
                         int32_t* handle) {
  require(std::strlen(server) <= 255 && std::strlen(user) <= 255 && std::strlen(password) <= 255,
          "credentials have their limit");
  const Answer answer = engine().next();
  *handle = static_cast<std::int32_t>(fuzzing::numberIn(answer.bytes, 7));
  engine().handle = *handle;
  return answer.status;
}

int16_t TalDisconnect(int32_t handle) {
  fuzzing::requireHandle(handle);
  ++engine().disconnects;
  return fuzzing::kIgnored;
}

int16_t TalGetEngineInformation(int32_t handle, uint8_t* flag, int32_t* first, int32_t* second,
                                int32_t* third, int32_t* engineType) {
  fuzzing::requireHandle(handle);
  const Answer answer = engine().next();
  *flag = 1;
  *first = *second = *third = -1;
  *engineType = static_cast<std::int32_t>(fuzzing::numberIn(answer.bytes, 0));
  return answer.status;
}

int16_t TalGetZorbVersion(int32_t handle, TalVersion* version) {
  fuzzing::requireHandle(handle);
  return fuzzing::give(engine().next(), version);
}

int16_t TalGetZorbUsageEx2(int32_t handle, TalUsage* usage) {
  fuzzing::requireHandle(handle);
  return fuzzing::give(engine().next(), usage);
}

int16_t TalGetZorbCommStatEx(int32_t handle, TalCommStat* statistics) {
  fuzzing::requireHandle(handle);
  const std::int16_t status = fuzzing::give(engine().next(), statistics);
  fuzzing::noteProtocols(*statistics);
  return status;
}

int16_t TalGetOpenFilesData(int32_t handle, uint32_t* count) {
  return fuzzing::take(handle, engine().files, count);
}

int16_t TalGetOpenFileName(int32_t handle, uint32_t index, uint32_t* size, char* name) {
  fuzzing::requireEntry(handle, engine().files, index);
  require(*size == TAL_NAME_SIZE, "the size of the name buffer is told");
  auto& buffer = *reinterpret_cast<char(*)[TAL_NAME_SIZE]>(name);
  const std::int16_t status = fuzzing::give(engine().nextEntry(), &buffer);
  engine().fileName.assign(buffer, strnlen(buffer, TAL_NAME_SIZE));
  *size = UINT32_MAX;
  fuzzing::note(buffer);
  return status;
}

int16_t TalGetFileInfo2(int32_t handle, const char* name, TalFileInfo* info) {
  fuzzing::requireFile(handle, name);
  const std::int16_t status = fuzzing::give(engine().next(), info);
  if (status != 0) return status;
  for (const std::uint8_t flag : {info->readOnly, info->recordLocks, info->transactionLock}) {
    fuzzing::noteFlag(flag);
  }
  return status;
}

int16_t TalFreeOpenFilesData(int32_t handle) { return fuzzing::release(handle, engine().files); }

int16_t TalGetFileHandlesData(int32_t handle, const char* name, uint32_t* count) {
  fuzzing::requireFile(handle, name);
  return fuzzing::countHandles(count);
}

int16_t TalGetFileHandleInfo(int32_t handle, const char* name, uint32_t /*index*/,
                             TalFileHandleInfo* info) {
  fuzzing::requireFile(handle, name);
  const std::int16_t status = fuzzing::give(engine().nextEntry(), info);
  fuzzing::note(info->clientName);
  fuzzing::noteOpenMode(info->openMode);
  return status;
}

int16_t TalGetZorbClientsData(int32_t handle, uint32_t* count) {
  return fuzzing::take(handle, engine().clients, count);
}

int16_t TalGetZorbClientId(int32_t handle, uint32_t index, tagTALCLIENTID* client) {
  fuzzing::requireEntry(handle, engine().clients, index);
  const std::int16_t status = fuzzing::give(engine().nextEntry(), client);
  engine().client = *client;
  return status;
}

int16_t TalGetZorbClientInfo(int32_t handle, const tagTALCLIENTID* client, TalClientInfo* info) {
  fuzzing::requireClient(handle, client);
  const std::int16_t status = fuzzing::give(engine().next(), info);
  fuzzing::note(info->networkAddress);
  fuzzing::note(info->sessionName);
  return status;
}

int16_t TalGetZorbClientHandlesData(int32_t handle, const tagTALCLIENTID* client, uint32_t* count) {
  fuzzing::requireClient(handle, client);
  return fuzzing::countHandles(count);
}

int16_t TalGetZorbClientHandleInfo(int32_t handle, const tagTALCLIENTID* client, uint32_t /*index*/,
                                   TalClientHandleInfo* info) {
  fuzzing::requireClient(handle, client);
  const std::int16_t status = fuzzing::give(engine().nextEntry(), info);
  fuzzing::note(info->fileName);
  fuzzing::noteOpenMode(info->openMode);
  return status;
}

int16_t TalFreeZorbClientsData(int32_t handle) {
  return fuzzing::release(handle, engine().clients);
}

int16_t TalGetSQLConnectionsData(int32_t handle, uint32_t* count) {
  return fuzzing::take(handle, engine().connections, count);
}

int16_t TalGetSQLConnectionInfo2(int32_t handle, uint32_t index, TalSqlConnectionInfo* info) {
  fuzzing::requireEntry(handle, engine().connections, index);
  const std::int16_t status = fuzzing::give(engine().nextEntry(), info);
  fuzzing::note(info->clientHost);
  fuzzing::note(info->dataSource);
  fuzzing::note(info->application);
  fuzzing::note(info->networkAddress);
  fuzzing::note(info->userName);
  return status;
}

int16_t TalFreeSQLConnectionsData(int32_t handle) {
  return fuzzing::release(handle, engine().connections);
}
