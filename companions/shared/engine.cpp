#include "companions/shared/engine.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <optional>

#include "engine/tal.h"
#include "messages/MessageHelper.h"

namespace companions {
namespace {

constexpr std::int32_t kLocalEngine = -1;

thread_local std::uint64_t calls = 0;

// False if the status is one of `ends`, which are not errors.
template <typename... Ends>
bool answered(const char* call, std::int16_t status, Ends... ends) {
  ++calls;
  const bool isEnd = ((status == ends) || ...);
  if (isEnd) return false;
  if (status != 0) throw CallFailure(call, status);
  return true;
}

void check(const char* call, std::int16_t status) { answered(call, status); }

// The text of a field: up to its NUL, or to the field's end.
template <std::size_t kSize>
std::string textOf(const char (&field)[kSize]) {
  return {field, strnlen(field, kSize)};
}

// An empty list with room for the announced entries, so that it takes no more memory than they
// need. A library may announce more than it has.
template <typename Entry>
std::vector<Entry> listFor(std::uint32_t count) {
  constexpr std::uint32_t kMostReserved = 65536;
  std::vector<Entry> list;
  list.reserve(std::min(count, kMostReserved));
  return list;
}

// Releases a snapshot when it goes out of scope.
class Snapshot {
 public:
  using Release = std::int16_t (*)(std::int32_t handle);

  Snapshot(Release release, std::int32_t handle) noexcept : release_(release), handle_(handle) {}
  Snapshot(const Snapshot&) = delete;
  Snapshot& operator=(const Snapshot&) = delete;
  ~Snapshot() { release_(handle_); }

 private:
  Release release_;
  std::int32_t handle_;
};

std::int32_t connected(const Login& login) {
  if (login.server.empty() && login.user.empty() && login.password.empty()) return kLocalEngine;
  std::int32_t handle = 0;
  check("TalConnectServer", TalConnectServer(login.server.c_str(), login.user.c_str(),
                                             login.password.c_str(), &handle));
  return handle;
}

tal::Gauge gaugeOf(const TalGauge& gauge) { return {gauge.current, gauge.peak, gauge.maximum}; }

// In the communication statistics a maximum is unsigned.
tal::Gauge gaugeOf(std::uint32_t current, std::uint32_t peak, std::uint32_t maximum) {
  return {current, peak, static_cast<std::int32_t>(maximum)};
}

tal::FileHandle handleOf(const TalFileHandleInfo& info) {
  return {info.clientIndex, info.openMode,         info.recordLockType,
          info.waitState,   info.transactionState, textOf(info.clientName)};
}

// Empty if the file was closed meanwhile: no part of a list is returned.
std::vector<tal::FileHandle> handlesOfFile(std::int32_t engine, const char* name) {
  std::uint32_t count = 0;
  if (!answered("TalGetFileHandlesData", TalGetFileHandlesData(engine, name, &count),
                TAL_STATUS_FILE_CLOSED)) {
    return {};
  }
  auto handles = listFor<tal::FileHandle>(count);
  for (std::uint32_t index = 0; index < count; ++index) {
    TalFileHandleInfo info{};
    const std::int16_t status = TalGetFileHandleInfo(engine, name, index, &info);
    if (!answered("TalGetFileHandleInfo", status, TAL_STATUS_NO_ENTRY, TAL_STATUS_FILE_CLOSED)) {
      if (status == TAL_STATUS_FILE_CLOSED) handles.clear();
      break;
    }
    handles.push_back(handleOf(info));
  }
  return handles;
}

// Nothing if the file was closed meanwhile.
std::optional<tal::OpenFile> fileNamed(std::int32_t engine, const char* name) {
  TalFileInfo info{};
  if (!answered("TalGetFileInfo2", TalGetFileInfo2(engine, name, &info), TAL_STATUS_FILE_CLOSED)) {
    return std::nullopt;
  }
  return tal::OpenFile{name,
                       info.pageSize,
                       info.readOnly,
                       info.recordLocks,
                       info.transactionLock,
                       info.sizeKb,
                       handlesOfFile(engine, name)};
}

tal::ClientHandle handleOf(const TalClientHandleInfo& info) {
  return {info.openMode, info.recordLockType, info.waitState, info.transactionState,
          textOf(info.fileName)};
}

// Empty if the client went away meanwhile: no part of a list is returned. A client that is gone
// before its handles are counted is an error, as it is to zelk (deliberate).
std::vector<tal::ClientHandle> handlesOfClient(std::int32_t engine, const tagTALCLIENTID& id) {
  std::uint32_t count = 0;
  check("TalGetZorbClientHandlesData", TalGetZorbClientHandlesData(engine, &id, &count));
  auto handles = listFor<tal::ClientHandle>(count);
  for (std::uint32_t index = 0; index < count; ++index) {
    TalClientHandleInfo info{};
    const std::int16_t status = TalGetZorbClientHandleInfo(engine, &id, index, &info);
    if (!answered("TalGetZorbClientHandleInfo", status, TAL_STATUS_NO_ENTRY,
                  TAL_STATUS_CLIENT_GONE)) {
      if (status == TAL_STATUS_CLIENT_GONE) handles.clear();
      break;
    }
    handles.push_back(handleOf(info));
  }
  return handles;
}

tal::Client clientOf(const tagTALCLIENTID& id, const TalClientInfo& info) {
  tal::Client client;
  client.id = textOf(id.text);
  client.firstNumber = id.first;
  client.taskNumber = id.task;
  client.site = info.site;
  client.networkAddress = textOf(info.networkAddress);
  client.reserved = info.reserved;
  client.recordsDeleted = info.recordsDeleted;
  client.recordsUpdated = info.recordsUpdated;
  client.recordsInserted = info.recordsInserted;
  client.recordsRead = info.recordsRead;
  client.diskAccesses = info.diskAccesses;
  client.cacheAccesses = info.cacheAccesses;
  client.locksUsed = info.locksUsed;
  client.transactionState = info.transactionState;
  client.processId = info.processId;
  client.connectionNumber = info.connectionNumber;
  client.sessionName = textOf(info.sessionName);
  return client;
}

// Nothing if the client went away meanwhile.
std::optional<tal::Client> clientWith(std::int32_t engine, const tagTALCLIENTID& id) {
  TalClientInfo info{};
  if (!answered("TalGetZorbClientInfo", TalGetZorbClientInfo(engine, &id, &info),
                TAL_STATUS_CLIENT_GONE)) {
    return std::nullopt;
  }
  tal::Client client = clientOf(id, info);
  client.handles = handlesOfClient(engine, id);
  return client;
}

tal::SqlConnection sqlConnectionOf(const TalSqlConnectionInfo& info) {
  return {textOf(info.clientHost),
          textOf(info.dataSource),
          textOf(info.application),
          textOf(info.networkAddress),
          textOf(info.userName),
          info.status,
          info.periodMs,
          info.totalTime};
}

}  // namespace

std::string CallFailure::text() const {
  return MessageHelper("TALMSG", "ORV_MSG_P_E_")
      .getResStr(std::to_string(status_).c_str())
      .toBytes();
}

std::uint64_t callsOfThisThread() noexcept { return calls; }

EngineLibrary::EngineLibrary() noexcept { TalStart(nullptr); }

EngineLibrary::~EngineLibrary() { TalStop(nullptr); }

EngineConnection::EngineConnection(const Login& login) : handle_(connected(login)) {}

EngineConnection::~EngineConnection() { TalDisconnect(handle_); }

tal::Information EngineConnection::information() const {
  tal::Information answer;
  check("TalGetEngineInformation",
        TalGetEngineInformation(handle_, &answer.flag, &answer.first, &answer.second, &answer.third,
                                &answer.engineType));
  return answer;
}

tal::Version EngineConnection::version() const {
  TalVersion answer{};
  check("TalGetZorbVersion", TalGetZorbVersion(handle_, &answer));
  return {answer.major, answer.minor, answer.build};
}

tal::Usage EngineConnection::usage() const {
  TalUsage answer{};
  check("TalGetZorbUsageEx2", TalGetZorbUsageEx2(handle_, &answer));
  tal::Usage usage;
  usage.users = gaugeOf(answer.users);
  usage.files = gaugeOf(answer.files);
  usage.handles = gaugeOf(answer.handles);
  usage.transactions = gaugeOf(answer.transactions);
  usage.clients = gaugeOf(answer.clients);
  usage.workerThreads = gaugeOf(answer.workerThreads);
  usage.locks = {answer.locksCurrent, answer.locksPeak, 0};
  usage.dataMb = gaugeOf(answer.dataMb);
  usage.sessions = gaugeOf(answer.sessions);
  usage.upTimeSeconds = answer.upTimeSeconds;
  return usage;
}

tal::Communication EngineConnection::communication() const {
  TalCommStat answer{};
  check("TalGetZorbCommStatEx", TalGetZorbCommStatEx(handle_, &answer));
  tal::Communication communication;
  communication.requests = answer.requests;
  std::copy(std::begin(answer.counters), std::end(answer.counters), communication.counters);
  communication.remoteSessions =
      gaugeOf(answer.remoteCurrent, answer.remotePeak, answer.remoteMaximum);
  communication.threads = gaugeOf(answer.threadsCurrent, answer.threadsPeak, answer.threadsMaximum);
  communication.timeouts = answer.timeouts;
  communication.recoveries = answer.recoveries;
  const std::uint32_t count = std::min<std::uint32_t>(answer.protocolCount, TAL_PROTOCOL_COUNT);
  for (std::uint32_t index = 0; index < count; ++index) {
    const TalProtocol& protocol = answer.protocols[index];
    communication.protocols.push_back(
        {protocol.code, protocol.requests, protocol.currentSessions, protocol.peakSessions});
  }
  return communication;
}

std::vector<tal::OpenFile> EngineConnection::files() const {
  std::uint32_t count = 0;
  check("TalGetOpenFilesData", TalGetOpenFilesData(handle_, &count));
  const Snapshot snapshot(TalFreeOpenFilesData, handle_);
  auto files = listFor<tal::OpenFile>(count);
  for (std::uint32_t index = 0; index < count; ++index) {
    // One byte more than the library knows of, so that a name that fills its buffer still ends with
    // a NUL.
    char name[TAL_NAME_SIZE + 1] = {};
    std::uint32_t size = TAL_NAME_SIZE;
    if (!answered("TalGetOpenFileName", TalGetOpenFileName(handle_, index, &size, name),
                  TAL_STATUS_NO_ENTRY)) {
      break;
    }
    name[TAL_NAME_SIZE] = '\0';
    if (auto file = fileNamed(handle_, name)) files.push_back(std::move(*file));
  }
  return files;
}

std::vector<tal::Client> EngineConnection::clients() const {
  std::uint32_t count = 0;
  check("TalGetZorbClientsData", TalGetZorbClientsData(handle_, &count));
  const Snapshot snapshot(TalFreeZorbClientsData, handle_);
  auto clients = listFor<tal::Client>(count);
  for (std::uint32_t index = 0; index < count; ++index) {
    tagTALCLIENTID id{};
    if (!answered("TalGetZorbClientId", TalGetZorbClientId(handle_, index, &id),
                  TAL_STATUS_NO_ENTRY)) {
      break;
    }
    if (auto client = clientWith(handle_, id)) clients.push_back(std::move(*client));
  }
  return clients;
}

std::vector<tal::SqlConnection> EngineConnection::sqlConnections() const {
  std::uint32_t count = 0;
  check("TalGetSQLConnectionsData", TalGetSQLConnectionsData(handle_, &count));
  const Snapshot snapshot(TalFreeSQLConnectionsData, handle_);
  auto connections = listFor<tal::SqlConnection>(count);
  for (std::uint32_t index = 0; index < count; ++index) {
    TalSqlConnectionInfo info{};
    if (!answered("TalGetSQLConnectionInfo2", TalGetSQLConnectionInfo2(handle_, index, &info),
                  TAL_STATUS_NO_ENTRY)) {
      break;
    }
    connections.push_back(sqlConnectionOf(info));
  }
  return connections;
}

}  // namespace companions
