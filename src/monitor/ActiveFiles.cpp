// The active files section.
#include <cstddef>

#include "monitor/MonitorProcessor.h"
#include "monitor/ReportText.h"

void MonitorProcessor::processActiveFiles(bool json) {
  const auto files = engine_->getActiveFileInfoList(config_->showHandles);
  if (json) {
    writeFilesJson(*files);
  } else {
    writeFilesText(*files);
  }
}

void MonitorProcessor::writeFilesText(const VXAMonitorHelper::Files& files) {
  output_->putHeader("Active Files:  " + orv::String::valueOf(files.size()), 0);
  for (const auto& file : files) {
    output_->putHeader("Active File Info:  " + file->name, 1);
    processActiveFileInfo(*file, false);
    if (config_->showHandles) writeFileHandlesText(*file->handles);
  }
}

void MonitorProcessor::writeFileHandlesText(const FileInfo::Handles& handles) {
  output_->putHeader("File Handles: " + orv::String::valueOf(handles.size()), 2);
  unsigned long number = 0;
  for (const auto& handle : handles) {
    output_->putHeader("Handle Info: #" + orv::String::valueOf(++number), 3);
    processActiveFileHDLInfo(*handle, false);
  }
}

void MonitorProcessor::writeFilesJson(const VXAMonitorHelper::Files& files) {
  put("\t\"active_files\": ");
  put("\t{");
  put("\t\t\"number_of_active_files\": " + orv::String::valueOf(files.size()) + ",");
  put("\t\t\"active_files_info\": [");
  std::size_t left = files.size();
  for (const auto& file : files) {
    put("\t\t\t{");
    put("\t\t\t\t\"active_file_name\": \"" + withBackslashesDoubled(file->name) + "\",");
    processActiveFileInfo(*file, true);
    if (config_->showHandles) writeFileHandlesJson(*file->handles);
    put(--left > 0 ? "\t\t\t}," : "\t\t\t}");
  }
  put("\t\t]");
  put("\t},");
}

void MonitorProcessor::writeFileHandlesJson(const FileInfo::Handles& handles) {
  put("\t\t\t\t\"file_handles\": " + orv::String::valueOf(handles.size()) + ",");
  if (handles.isEmpty()) return;
  put("\t\t\t\t\"handle_info\": [");
  std::size_t left = handles.size();
  for (const auto& handle : handles) {
    put("\t\t\t\t\t{");
    processActiveFileHDLInfo(*handle, true);
    put(--left > 0 ? "\t\t\t\t\t}," : "\t\t\t\t\t}");
  }
  put("\t\t\t\t]");
}

void MonitorProcessor::processActiveFileInfo(const FileInfo& file, bool json) {
  const orv::String pageSize = orv::String::valueOf(file.pageSize);
  const orv::String readOnly = getReadOnlyFlagString(file.readOnly);
  const orv::String recordLocks = getRecordLocksString(file.recordLocks);
  const orv::String transactionLock = getTransactionLockString(file.transactionLock);
  const orv::String sizeKb = orv::String::valueOf(file.sizeKb);
  if (json) {
    put("\t\t\t\t\"page_size\": " + pageSize + ",");
    put("\t\t\t\t\"read_only_flag\": " + readOnly + ",");
    put("\t\t\t\t\"read_locks\": " + recordLocks + ",");  // the key is kept (deliberate)
    put("\t\t\t\t\"transaction_lock\": " + transactionLock + ",");
    // The comma stays without handle detail too (deliberate).
    put("\t\t\t\t\"physical_file_size_kb\": " + sizeKb + ",");
  } else {
    put(label<23>("Page Size:             ") + pageSize, 1);
    put(label<23>("Read-Only Flag:        ") + readOnly, 1);
    put(label<23>("Record Locks:          ") + recordLocks, 1);
    put(label<23>("Transaction Lock:      ") + transactionLock, 1);
    put(label<23>("Physical File Size KB: ") + sizeKb, 1);
  }
}

void MonitorProcessor::processActiveFileHDLInfo(const FileHandleInfo& handle, bool json) {
  const orv::String clientIndex = unsignedText(handle.clientIndex);
  const orv::String openMode = getOpenModeString(handle.openMode);
  const orv::String recordLockType = getRecordLockTypeString(handle.recordLockType);
  const orv::String waitState = getWaitStateString(handle.waitState);
  const orv::String transactionState = getTransStateString(handle.transactionState);
  if (json) {
    put("\t\t\t\t\t\t\"client_index\": " + clientIndex + ",");
    put("\t\t\t\t\t\t\"client_name\": \"" + handle.clientName() + "\",");
    put("\t\t\t\t\t\t\"open_mode\": [ " + openMode + " ],");
    put("\t\t\t\t\t\t\"record_lock_type\": \"" + recordLockType + "\",");
    put("\t\t\t\t\t\t\"wait_state\": \"" + waitState + "\",");
    // A blank before the colon, none after it (deliberate: parsers rely on it).
    put("\t\t\t\t\t\t\"transaction_state\" :\"" + transactionState + "\"");
  } else {
    put(label<19>("Client Index:      ") + clientIndex, 3);
    put(label<19>("Client Name:       ") + handle.clientName(), 3);
    put(label<19>("Open Mode:         ") + openMode, 3);
    put(label<19>("Record Lock Type:  ") + recordLockType, 3);
    put(label<19>("Wait State:        ") + waitState, 3);
    put(label<19>("Transaction State: ") + transactionState, 3);
  }
}
