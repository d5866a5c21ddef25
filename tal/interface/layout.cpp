#include "tal/interface/layout.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "tal/text.h"

namespace tal::interface {
namespace {

TalGauge gauge(const Gauge& from) noexcept { return {from.current, from.peak, from.maximum}; }

// In the communication statistics the maxima are unsigned.
std::uint32_t unsignedMaximum(const Gauge& from) noexcept {
  return static_cast<std::uint32_t>(from.maximum);
}

TalProtocol protocol(const Protocol& from) noexcept {
  return {from.code, from.requests, from.currentSessions, from.peakSessions};
}

}  // namespace

void fill(std::uint32_t& out, std::size_t count) noexcept {
  out = static_cast<std::uint32_t>(count);
}

void fill(TalVersion& out, const Version& version) noexcept {
  out = {version.major, version.minor, version.build};
}

void fill(TalUsage& out, const Usage& usage) noexcept {
  out = {};
  out.users = gauge(usage.users);
  out.files = gauge(usage.files);
  out.handles = gauge(usage.handles);
  out.transactions = gauge(usage.transactions);
  out.clients = gauge(usage.clients);
  out.workerThreads = gauge(usage.workerThreads);
  out.locksCurrent = usage.locks.current;
  out.locksPeak = usage.locks.peak;
  out.dataMb = gauge(usage.dataMb);
  out.sessions = gauge(usage.sessions);
  out.upTimeSeconds = usage.upTimeSeconds;
}

void fill(TalCommStat& out, const Communication& communication) noexcept {
  out = {};
  out.requests = communication.requests;
  std::copy(std::begin(communication.counters), std::end(communication.counters), out.counters);
  out.remoteCurrent = communication.remoteSessions.current;
  out.remotePeak = communication.remoteSessions.peak;
  out.remoteMaximum = unsignedMaximum(communication.remoteSessions);
  out.threadsCurrent = communication.threads.current;
  out.threadsPeak = communication.threads.peak;
  out.threadsMaximum = unsignedMaximum(communication.threads);
  out.timeouts = communication.timeouts;
  out.recoveries = communication.recoveries;
  const std::size_t count =
      std::min<std::size_t>(communication.protocols.size(), TAL_PROTOCOL_COUNT);
  out.protocolCount = static_cast<std::uint32_t>(count);
  std::transform(communication.protocols.begin(),
                 communication.protocols.begin() + static_cast<std::ptrdiff_t>(count),
                 out.protocols, protocol);
}

void fill(TalFileInfo& out, const OpenFile& file) noexcept {
  out = {};
  out.recordLocks = file.recordLocks;
  out.transactionLock = file.transactionLock;
  out.readOnly = file.readOnly;
  out.pageSize = file.pageSize;
  out.sizeKb = file.sizeKb;
}

void fill(TalFileHandleInfo& out, const FileHandle& handle) noexcept {
  out = {};
  out.clientIndex = handle.clientIndex;
  out.openMode = handle.openMode;
  out.recordLockType = handle.recordLockType;
  out.waitState = handle.waitState;
  out.transactionState = handle.transactionState;
  putText(out.clientName, handle.clientName);
}

void fill(tagTALCLIENTID& out, const Client& client) noexcept {
  out = {};
  putText(out.text, client.id);
  out.first = client.firstNumber;
  out.task = client.taskNumber;
}

void fill(TalClientInfo& out, const Client& client) noexcept {
  out = {};
  out.site = client.site;
  putText(out.networkAddress, client.networkAddress);
  out.reserved = client.reserved;
  out.recordsDeleted = client.recordsDeleted;
  out.recordsUpdated = client.recordsUpdated;
  out.recordsInserted = client.recordsInserted;
  out.recordsRead = client.recordsRead;
  out.diskAccesses = client.diskAccesses;
  out.cacheAccesses = client.cacheAccesses;
  out.locksUsed = client.locksUsed;
  out.transactionState = client.transactionState;
  out.processId = client.processId;
  out.connectionNumber = client.connectionNumber;
  putText(out.sessionName, client.sessionName);
}

void fill(TalClientHandleInfo& out, const ClientHandle& handle) noexcept {
  out = {};
  out.openMode = handle.openMode;
  out.recordLockType = handle.recordLockType;
  out.waitState = handle.waitState;
  out.transactionState = handle.transactionState;
  putText(out.fileName, handle.fileName);
}

void fill(TalSqlConnectionInfo& out, const SqlConnection& connection) noexcept {
  out = {};
  putText(out.clientHost, connection.clientHost);
  putText(out.dataSource, connection.dataSource);
  putText(out.application, connection.application);
  putText(out.networkAddress, connection.networkAddress);
  putText(out.userName, connection.userName);
  out.status = connection.status;
  out.periodMs = connection.periodMs;
  out.totalTime = connection.totalTime;
}

}  // namespace tal::interface
