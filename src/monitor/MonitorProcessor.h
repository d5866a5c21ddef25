// One monitoring run.
#pragma once

#include <atomic>
#include <utility>

#include "config/ConfigData.h"
#include "engine/VXAMonitorHelper.h"
#include "messages/MessageHelper.h"
#include "orv/Collections.h"
#include "orv/Object.h"
#include "orv/String.h"
#include "orv/io/Writers.h"
#include "output/FormatHelper.h"

// Asks the timed loop, and the manual loop while it waits, to end. Set by the keyboard thread, by a
// stop signal or by the timed loop at its limit; never reset: a process runs one monitoring run.
extern std::atomic<bool> s_stopRequested;

// Printed for a value that is not available or not known.
extern const orv::String s_notAvailable;

// Builds the output, writes the run header, connects to the engine and prints the report sections
// once, at the refresh rate, or when the user asks. Each section fetches all its data before its
// first line, so that no section stays half-written if the engine fails. Failures of the engine
// (VXAException) and of the output (orv::io::IoException) end the run. Used by the main thread.
class MonitorProcessor {
 public:
  // The configuration is not owned and must outlive the processor, which wipes the password when it
  // is no longer needed. `json` selects the form of the value maps.
  MonitorProcessor(ConfigData* config, bool json);
  MonitorProcessor(const MonitorProcessor&) = delete;
  MonitorProcessor& operator=(const MonitorProcessor&) = delete;
  // Disconnects from the engine.
  virtual ~MonitorProcessor();

  // The whole run. `json` must be the same as for the constructor. Until the engine is connected, a
  // stop signal ends the process at once.
  void startMonitoring(bool runOnce, bool json);

  // One refresh: the enabled sections in their fixed order.
  void processMonitorRequests(bool json);
  void processMonitorRequestsUntilStopped(bool json);
  void processMonitorRequestManually(bool json);

  // Reads the keyboard on a thread of its own. The thread keeps `out` and writes its closing line
  // to it before it sets s_stopRequested; until then nobody else may use `out`. Throws
  // orv::ResultException if the thread cannot be started.
  void startUserInputThread(orv::io::PrintWriter* out);
  static void* readUserInput(void* arguments);
  // Ends early, within three seconds, when a stop is requested.
  static void incrementalSleep(long milliseconds);

  void createOutputFormatter();

  // The settings, as text or as a JSON member; never the user or the password.
  void printConfiguration(bool json);
  // `kind`: 0 a text, 1 a number, 2 a flag.
  void printConfigurationNV(const orv::String& name, const orv::String& value, bool json, int kind);

  // Codes to words. A code that is not in a map is "n/a".
  void createMaps(bool json);
  static orv::String getMapValue(const orv::Reference<orv::collections::IntegerHashMap>& map,
                                 int code);
  [[nodiscard]] orv::String getBooleanStateString(int code) const;
  [[nodiscard]] orv::String getReadOnlyFlagString(int code) const;
  [[nodiscard]] orv::String getTransactionLockString(int code) const;
  [[nodiscard]] orv::String getRecordLocksString(int code) const;
  [[nodiscard]] orv::String getOpenModeString(int code) const;
  [[nodiscard]] orv::String getRecordLockTypeString(int code) const;
  [[nodiscard]] orv::String getTransStateString(int code) const;
  [[nodiscard]] orv::String getWaitStateString(int code) const;
  [[nodiscard]] orv::String getSiteString(int code) const;
  [[nodiscard]] orv::String getProtocolRequestString(int code) const;
  [[nodiscard]] orv::String getProtocolSessionString(int code) const;
  static orv::String getStatusString(int status);
  // "unlimited" for 0.
  static orv::String getMaxValue(long maximum);
  // "n/a" above 32000.
  static orv::String getConnectionString(unsigned long number);

  // The sections. Each writes its text form or its JSON form.
  void processActiveFiles(bool json);
  void processActiveFileInfo(const FileInfo& file, bool json);
  void processActiveFileHDLInfo(const FileHandleInfo& handle, bool json);
  void processActiveSessions(bool json);
  void processActiveSessionInfo(const SessionInfo& session, bool json);
  void processActiveSessionHDInfo(const SessionHandleInfo& handle, bool json);
  void processActiveConnections(bool json);
  void processActiveConnectionInfo(const ConnInfo& connection, bool json);
  void processResourceStats(bool json);
  void processCommunicationStats(bool json);

 private:
  class UserInputThreadArgs;
  using IntegerMap = orv::Reference<orv::collections::IntegerHashMap>;

  void writeRunStart(bool json);
  void closeDocument();
  void refresh(bool json);
  void printConfigurationMembers(bool json);
  void printPromptAndProgress(orv::io::PrintWriter& writer, const orv::String& prompt, int count);
  void readKeysManually(orv::io::PrintWriter& writer, const orv::String& prompt, bool json);

  void writeFilesText(const VXAMonitorHelper::Files& files);
  void writeFilesJson(const VXAMonitorHelper::Files& files);
  void writeFileHandlesText(const FileInfo::Handles& handles);
  void writeFileHandlesJson(const FileInfo::Handles& handles);
  void writeSessionsText(const VXAMonitorHelper::Sessions& sessions);
  void writeSessionsJson(const VXAMonitorHelper::Sessions& sessions);
  void writeSessionHandlesText(const SessionInfo::Handles& handles);
  void writeSessionHandlesJson(const SessionInfo::Handles& handles);
  void writeConnectionsText(const VXAMonitorHelper::Connections& connections);
  void writeConnectionsJson(const VXAMonitorHelper::Connections& connections);
  void writeResourcesText(const UsageStats& usage);
  void writeResourcesJson(const UsageStats& usage);
  void writeCommunicationText(const CommStats& statistics);
  void writeCommunicationJson(const CommStats& statistics);

  // One line of a report, after `tabs` tabs.
  template <class Text>
  void put(const Text& line, int tabs = 0) {
    output_->putData(line, tabs);
  }

  ConfigData* config_;
  orv::OwningPtr<VXAMonitorHelper> engine_;
  orv::Reference<FormatHelper> output_;
  orv::Reference<MessageHelper> messages_;
  int engineType_ = 0;

  IntegerMap booleanStateMap_;
  IntegerMap openModeMap_;
  IntegerMap recordLockTypeMap_;
  IntegerMap transStateMap_;
  IntegerMap waitStateMap_;
  IntegerMap siteMap_;
  IntegerMap protocolRequestMap_;
  IntegerMap protocolSessionMap_;
};
