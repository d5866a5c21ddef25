// The keys of the values of an engine, in scenario files and in recordings. This is the only place
// that has them.
#pragma once

#include <string_view>

#include "tal/recording/words.h"

namespace tal::recording {

// Names a field. A code has words; other fields have none.
struct Key {
  constexpr Key(const char* text, Words codeWords = {}) : name(text), words(codeWords) {}

  std::string_view name;
  Words words;
};

inline constexpr Key kEngineKey = "engine";
inline constexpr Key kVersionKey = "version";
inline constexpr Key kFileKey = "file";
inline constexpr Key kClientKey = "client";
inline constexpr Key kSqlConnectionKey = "sql_connection";
inline constexpr Key kUsageKey = "usage";
inline constexpr Key kCommunicationKey = "communication";
inline constexpr Key kProtocolKey = "protocol";  // the list in the communication statistics
inline constexpr Key kHandleKey = "handle";      // the list in a file and in a client

// Each function below calls `visit(key, field...)` for every field of a kind of record, in the
// order in which the keys are written. It takes one record, or several whose fields have the same
// names, for instance a value of tal/engine.h and its entry in a scenario. Then `visit` gets the
// field of each. The lists of handles and of protocols are not visited.

template <typename Visit, typename... Gauge>
void visitGauge(const Visit& visit, Gauge&... gauge) {
  visit("current", gauge.current...);
  visit("peak", gauge.peak...);
  visit("maximum", gauge.maximum...);
}

template <typename Visit, typename... Information>
void visitInformation(const Visit& visit, Information&... information) {
  visit("type", information.engineType...);
  visit("flag", information.flag...);
  visit("first", information.first...);
  visit("second", information.second...);
  visit("third", information.third...);
}

template <typename Visit, typename... Version>
void visitVersion(const Visit& visit, Version&... version) {
  visit("major", version.major...);
  visit("minor", version.minor...);
  visit("build", version.build...);
}

// All fields but the last are gauges.
template <typename Visit, typename... Usage>
void visitUsage(const Visit& visit, Usage&... usage) {
  visit("users", usage.users...);
  visit("files", usage.files...);
  visit("handles", usage.handles...);
  visit("transactions", usage.transactions...);
  visit("clients", usage.clients...);
  visit("worker_threads", usage.workerThreads...);
  visit("locks", usage.locks...);
  visit("data_mb", usage.dataMb...);
  visit("sessions", usage.sessions...);
  visit("up_time_seconds", usage.upTimeSeconds...);
}

// Two of the fields are gauges.
template <typename Visit, typename... Communication>
void visitCommunication(const Visit& visit, Communication&... communication) {
  visit("requests", communication.requests...);
  visit("counter_1", communication.counters[0]...);
  visit("counter_2", communication.counters[1]...);
  visit("counter_3", communication.counters[2]...);
  visit("remote_sessions", communication.remoteSessions...);
  visit("threads", communication.threads...);
  visit("timeouts", communication.timeouts...);
  visit("recoveries", communication.recoveries...);
}

template <typename Visit, typename... Protocol>
void visitProtocol(const Visit& visit, Protocol&... protocol) {
  visit({"code", kProtocolWords}, protocol.code...);
  visit("requests", protocol.requests...);
  visit("current_sessions", protocol.currentSessions...);
  visit("peak_sessions", protocol.peakSessions...);
}

template <typename Visit, typename... File>
void visitFile(const Visit& visit, File&... file) {
  visit("name", file.name...);
  visit("page_size", file.pageSize...);
  visit({"read_only", kFlagWords}, file.readOnly...);
  visit({"record_locks", kFlagWords}, file.recordLocks...);
  visit({"transaction_lock", kFlagWords}, file.transactionLock...);
  visit("size_kb", file.sizeKb...);
}

template <typename Visit, typename... Handle>
void visitHandleState(const Visit& visit, Handle&... handle) {
  visit({"open_mode", kOpenModeWords}, handle.openMode...);
  visit({"record_lock", kRecordLockWords}, handle.recordLockType...);
  visit({"wait_state", kWaitStateWords}, handle.waitState...);
  visit({"transaction_state", kTransactionStateWords}, handle.transactionState...);
}

template <typename Visit, typename... Handle>
void visitFileHandle(const Visit& visit, Handle&... handle) {
  visit("client", handle.clientName...);
  visit("client_index", handle.clientIndex...);
  visitHandleState(visit, handle...);
}

template <typename Visit, typename... Handle>
void visitClientHandle(const Visit& visit, Handle&... handle) {
  visit("file", handle.fileName...);
  visitHandleState(visit, handle...);
}

template <typename Visit, typename... Client>
void visitClient(const Visit& visit, Client&... client) {
  visit("id", client.id...);
  visit("first_number", client.firstNumber...);
  visit("task_number", client.taskNumber...);
  visit({"site", kSiteWords}, client.site...);
  visit("network_address", client.networkAddress...);
  visit("reserved", client.reserved...);
  visit("records_deleted", client.recordsDeleted...);
  visit("records_updated", client.recordsUpdated...);
  visit("records_inserted", client.recordsInserted...);
  visit("records_read", client.recordsRead...);
  visit("disk_accesses", client.diskAccesses...);
  visit("cache_accesses", client.cacheAccesses...);
  visit("locks_used", client.locksUsed...);
  visit({"transaction_state", kTransactionStateWords}, client.transactionState...);
  visit("process_id", client.processId...);
  visit("connection_number", client.connectionNumber...);
  visit("session_name", client.sessionName...);
}

template <typename Visit, typename... Connection>
void visitSqlConnection(const Visit& visit, Connection&... connection) {
  visit("client_host", connection.clientHost...);
  visit("data_source", connection.dataSource...);
  visit("application", connection.application...);
  visit("network_address", connection.networkAddress...);
  visit("user_name", connection.userName...);
  visit({"status", kConnectionStatusWords}, connection.status...);
  visit("period_ms", connection.periodMs...);
  visit("total_time", connection.totalTime...);
}

}  // namespace tal::recording
