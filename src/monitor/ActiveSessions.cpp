// The active sessions section.
#include <cstddef>

#include "monitor/MonitorProcessor.h"
#include "monitor/ReportText.h"

void MonitorProcessor::processActiveSessions(bool json) {
  const auto sessions = engine_->getActiveSessionInfoList(config_->showHandles);
  if (json) {
    writeSessionsJson(*sessions);
  } else {
    writeSessionsText(*sessions);
  }
}

void MonitorProcessor::writeSessionsText(const VXAMonitorHelper::Sessions& sessions) {
  output_->putHeader("Vantor Active Sessions: " + orv::String::valueOf(sessions.size()), 0);
  unsigned long number = 0;
  for (const auto& session : sessions) {
    output_->putHeader("Active Session Info: #" + orv::String::valueOf(++number), 1);
    processActiveSessionInfo(*session, false);
    if (config_->showHandles) writeSessionHandlesText(*session->handles);
  }
}

void MonitorProcessor::writeSessionHandlesText(const SessionInfo::Handles& handles) {
  output_->putHeader("Session Handles: " + orv::String::valueOf(handles.size()), 2);
  unsigned long number = 0;
  for (const auto& handle : handles) {
    output_->putHeader("Handle " + orv::String::valueOf(++number) + " Info: " + handle->fileName,
                       3);
    processActiveSessionHDInfo(*handle, false);
  }
}

void MonitorProcessor::writeSessionsJson(const VXAMonitorHelper::Sessions& sessions) {
  put("\t\"vantor_active_sessions\": ");
  put("\t{");
  // No blank after the colon (deliberate).
  put("\t\t\"number_of_vantor_active_sessions\":" + orv::String::valueOf(sessions.size()) + ",");
  put("\t\t\"active_session_info\": [");
  std::size_t left = sessions.size();
  for (const auto& session : sessions) {
    put("\t\t{");
    processActiveSessionInfo(*session, true);
    --left;
    // Without handle detail the object stays open (deliberate: parsers rely on it).
    if (!config_->showHandles) continue;
    writeSessionHandlesJson(*session->handles);
    put(left > 0 ? "\t\t}," : "\t\t}");
  }
  put("\t\t]");
  put("\t},");
}

void MonitorProcessor::writeSessionHandlesJson(const SessionInfo::Handles& handles) {
  put("\t\t\t\"session_handles\": {");
  put("\t\t\t\t\"number_of_session_handles\": " + orv::String::valueOf(handles.size()) + ",");
  put("\t\t\t\t\"session_handles_info\": [");
  std::size_t left = handles.size();
  for (const auto& handle : handles) {
    put("\t\t\t\t\t{");
    // No blank after the colon (deliberate).
    put("\t\t\t\t\t\t\"handle_file_name\":\"" + withBackslashesDoubled(handle->fileName) + "\",");
    processActiveSessionHDInfo(*handle, true);
    put(--left > 0 ? "\t\t\t\t\t}," : "\t\t\t\t\t}");
  }
  put("\t\t\t\t]");
  put("\t\t\t}");
}

void MonitorProcessor::processActiveSessionInfo(const SessionInfo& session, bool json) {
  const orv::String connectionNumber =
      getConnectionString(static_cast<unsigned long>(session.connectionNumber));
  const orv::String taskNumber = orv::String::valueOf(session.clientId->task);
  const orv::String processId = unsignedText(session.processId);
  const orv::String site = getSiteString(session.site);
  const orv::String locksUsed = unsignedText(session.locksUsed);
  const orv::String transactionState = getTransStateString(session.transactionState);
  const orv::String read = unsignedText(session.recordsRead);
  const orv::String inserted = unsignedText(session.recordsInserted);
  const orv::String deleted = unsignedText(session.recordsDeleted);
  const orv::String updated = unsignedText(session.recordsUpdated);
  const orv::String diskAccesses = unsignedText(session.diskAccesses);
  const orv::String cacheAccesses = unsignedText(session.cacheAccesses);
  if (json) {
    put("\t\t\t\"session_name\": \"" + session.sessionName + "\",");
    put("\t\t\t\"client_id\": \"n/a\",");
    put("\t\t\t\"connection_number\": \"" + connectionNumber + "\",");
    put("\t\t\t\"task_number\": " + taskNumber + ",");
    put("\t\t\t\"PID\": " + processId + ",");
    put("\t\t\t\"site\": \"" + site + "\",");
    put("\t\t\t\"network_address\": \"" + session.networkAddress + "\",");
    put("\t\t\t\"locks_used\": " + locksUsed + ",");
    put("\t\t\t\"transaction_state\": \"" + transactionState + "\",");
    put("\t\t\t\"records_read\": " + read + ",");
    put("\t\t\t\"records_inserted\": " + inserted + ",");
    put("\t\t\t\"records_deleted\": " + deleted + ",");
    put("\t\t\t\"records_updated\": " + updated + ",");
    put("\t\t\t\"disk_accesses\": " + diskAccesses + ",");
    put("\t\t\t\"cache_accesses\": " + cacheAccesses + ",");
  } else {
    put(label<21>("Session Name:        ") + session.sessionName, 1);
    put(label<21>("Client ID:           "), 1);  // no value (deliberate)
    put(label<21>("Connection Number:   ") + connectionNumber, 1);
    put(label<21>("Task Number:         ") + taskNumber, 1);
    put(label<21>("PID:                 ") + processId, 1);
    put(label<21>("Site:                ") + site, 1);
    put(label<21>("Network Address:     ") + session.networkAddress, 1);
    put(label<21>("Locks used:          ") + locksUsed, 1);
    put(label<21>("Transaction State:   ") + transactionState, 1);
    put(label<21>("Records Read:        ") + read, 1);
    put(label<21>("Records Inserted:    ") + inserted, 1);
    put(label<21>("Records Deleted:     ") + deleted, 1);
    put(label<21>("Records Updated:     ") + updated, 1);
    put(label<21>("Disk Accesses:       ") + diskAccesses, 1);
    put(label<21>("Cache Accesses:      ") + cacheAccesses, 1);
  }
}

void MonitorProcessor::processActiveSessionHDInfo(const SessionHandleInfo& handle, bool json) {
  const orv::String openMode = getOpenModeString(handle.openMode);
  const orv::String recordLockType = getRecordLockTypeString(handle.recordLockType);
  const orv::String waitState = getWaitStateString(handle.waitState);
  const orv::String transactionState = getTransStateString(handle.transactionState);
  if (json) {
    // No blank after the bracket (deliberate).
    put("\t\t\t\t\t\t\"open_mode\": [" + openMode + " ],");
    put("\t\t\t\t\t\t\"record_lock_type\": \"" + recordLockType + "\",");
    put("\t\t\t\t\t\t\"wait_state\": \"" + waitState + "\",");
    put("\t\t\t\t\t\t\"transaction_state\": \"" + transactionState + "\"");
  } else {
    put(label<21>("Open Mode:           ") + openMode, 3);
    put(label<21>("Record Lock Type:    ") + recordLockType, 3);
    put(label<21>("Wait State:          ") + waitState, 3);
    put(label<21>("Transaction State:   ") + transactionState, 3);
  }
}
