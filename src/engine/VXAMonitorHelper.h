// The engine: one connection, its answers and its failures.
#pragma once

#include <cstdint>

#include "engine/FileInfo.h"
#include "engine/SessionInfo.h"
#include "engine/Statistics.h"
#include "engine/tal.h"
#include "messages/MessageHelper.h"
#include "orv/Collections.h"
#include "orv/Exception.h"
#include "orv/Object.h"
#include "orv/String.h"

// The engine answered with an error status. Ends the run with exit code 1; the status and its text
// go to standard error.
class VXAException : public orv::Exception {
 public:
  VXAException(orv::String const& message, int code) : Exception(message), code_(code) {}

  // The engine's status.
  [[nodiscard]] std::int32_t getErrorCode() const noexcept { return code_; }

 private:
  std::int32_t code_;
};

// One connection to an engine, with the requests that it serves. Every request builds new records.
// An error of the engine becomes VXAException; the statuses that end or shorten a list do not.
// Every snapshot is released once, even if a list fails. Used by one thread. The owner must call
// disconnect(): the destructor does not.
class VXAMonitorHelper {
 public:
  using Files = orv::collections::List<FileInfo>;
  using Sessions = orv::collections::List<SessionInfo>;
  using Connections = orv::collections::List<ConnInfo>;

  VXAMonitorHelper();
  VXAMonitorHelper(const VXAMonitorHelper&) = delete;
  VXAMonitorHelper& operator=(const VXAMonitorHelper&) = delete;
  virtual ~VXAMonitorHelper() = default;

  // Three empty texts stand for the local engine. Throws orv::ResultException for a text that is
  // longer than 255 bytes or has a NUL byte: a password that is cut silently could lock an account.
  // After a failure the interface is stopped.
  void connect(const orv::String& server, const orv::String& user, const orv::String& password);
  // A second call does nothing.
  void disconnect();

  int getEngineType();
  // Such as "15.21.016".
  orv::String getEngineVersion();
  orv::Reference<UsageStats> getUsageStats();
  orv::Reference<CommStats> getCommStats();

  // With handle detail, only files and sessions that have handles are listed.
  orv::Reference<Files> getActiveFileInfoList(bool withHandles);
  orv::Reference<FileInfo::Handles> getFileHandleInfoList(const orv::String& fileName);
  orv::Reference<Sessions> getActiveSessionInfoList(bool withHandles);
  orv::Reference<SessionInfo::Handles> getSessionFileHandleInfoList(const tagTALCLIENTID* clientId);
  orv::Reference<Connections> getConnInfoList();

  // The status in decimal, ": " and its text.
  [[nodiscard]] orv::String createErrorMsg(int code) const;

 private:
  // Throws VXAException unless the status is success.
  void check(std::int16_t status) const;
  void stop();

  class ClientNames;

  // Null if the file was closed meanwhile or, with handle detail, has no handles.
  orv::Reference<FileInfo> readFile(const char* name, bool withHandles, ClientNames& names);
  orv::Reference<FileInfo::Handles> readHandles(const orv::String& fileName, ClientNames& names);
  // Null if the client went away meanwhile or, with handle detail, has no handles.
  orv::Reference<SessionInfo> readSession(const tagTALCLIENTID& client, bool withHandles);

  std::int32_t handle_;
  bool isStopped_ = false;
  orv::Reference<MessageHelper> messages_;  // texts of the engine's statuses
  orv::Reference<MessageHelper> programMessages_;
};
