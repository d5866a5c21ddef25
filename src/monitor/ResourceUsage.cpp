// The resource usage section.
#include "monitor/MonitorProcessor.h"
#include "monitor/ReportText.h"
#include "util/Utils.h"

namespace {

// These engine types have other columns for users, sessions and data.
constexpr bool limitsSessions(int engineType) { return engineType == 6 || engineType == 7; }

orv::String columns(const orv::String& current, const orv::String& peak,
                    const orv::String& maximum) {
  return current + "\t\t" + peak + "\t\t" + maximum;
}

orv::String columns(const ResourceCount& count, const orv::String& maximum) {
  return columns(unsignedText(count.current), unsignedText(count.peak), maximum);
}

}  // namespace

void MonitorProcessor::processResourceStats(bool json) {
  const auto usage = engine_->getUsageStats();
  if (json) {
    writeResourcesJson(*usage);
  } else {
    writeResourcesText(*usage);
  }
}

void MonitorProcessor::writeResourcesText(const UsageStats& usage) {
  const bool limited = limitsSessions(engineType_);
  const orv::String& none = s_notAvailable;
  const orv::String users = limited
                                ? columns(none, none, none)
                                : columns(usage.users, orv::String::valueOf(usage.users.maximum));
  const orv::String sessions =
      columns(usage.sessions, limited ? orv::String::valueOf(usage.sessions.maximum) : none);
  const orv::String data =
      columns(usage.dataMb, limited ? orv::String::valueOf(usage.dataMb.maximum) : none);
  const ResourceCount locks{usage.locksCurrent, usage.locksPeak, 0};

  output_->putHeader("Resource Usage", 0);
  put("Engine Uptime: " + Utils::convertTimeInSecs(usage.upTimeSeconds) + " (hh:mm:ss)");
  put("");
  put("                       Current\t\tPeak\t\tMaximum", 1);
  put(label<23>("Files:                 ") + columns(usage.files, getMaxValue(usage.files.maximum)),
      1);
  put(label<23>("Handles:               ") +
          columns(usage.handles, getMaxValue(usage.handles.maximum)),
      1);
  put(label<23>("Clients:               ") +
          columns(usage.clients, getMaxValue(usage.clients.maximum)),
      1);
  put(label<23>("Worker Threads:        ") +
          columns(usage.workerThreads, getMaxValue(usage.workerThreads.maximum)),
      1);
  put(label<23>("User Count:            ") + users, 1);
  put(label<23>("Session Count:         ") + sessions, 1);
  put(label<23>("Data in Use MB:        ") + data, 1);
  // Always "unlimited", whatever the engine's maximum (deliberate).
  put(label<23>("Transactions:          ") + columns(usage.transactions, getMaxValue(0)), 1);
  put(label<23>("Locks:                 ") + columns(locks, getMaxValue(0)), 1);
}

void MonitorProcessor::writeResourcesJson(const UsageStats& usage) {
  const bool limited = limitsSessions(engineType_);
  // With these engine types some colons are followed by no blank (deliberate).
  const char* const current = "\t\t\t\"current\": ";
  const char* const peak = "\t\t\t\"peak\": ";
  const char* const userCurrent = limited ? "\t\t\t\"current\":" : current;
  const char* const closePeak = limited ? "\t\t\t\"peak\":" : peak;
  const auto block = [&](const char* opening, const char* currentKey, const char* peakKey,
                         const ResourceCount& count, const orv::String& maximum,
                         const char* closing) {
    put(opening);
    put(currentKey + unsignedText(count.current) + ",");
    put(peakKey + unsignedText(count.peak) + ",");
    put("\t\t\t\"maximum\": \"" + maximum + "\"");
    put(closing);
  };
  // The peak line repeats the current value (deliberate: parsers rely on it).
  const ResourceCount handles{usage.handles.current, usage.handles.current, usage.handles.maximum};
  const ResourceCount locks{usage.locksCurrent, usage.locksPeak, 0};

  put("\t\"resource_usage\":");
  put("\t{");
  put("\t\t\"engine_uptime\": \"" + Utils::convertTimeInSecs(usage.upTimeSeconds) +
      " (hh:mm:ss)\",");
  block("\t\t\"files\": {", current, peak, usage.files, getMaxValue(usage.files.maximum), "\t\t},");
  block("\t\t\"handles\": {", current, peak, handles, getMaxValue(handles.maximum), "\t\t},");
  // Three closings carry a trailing blank (deliberate).
  block("\t\t\"client\": {", current, peak, usage.clients, getMaxValue(usage.clients.maximum),
        "\t\t}, ");
  block("\t\t\"worker_threads\": {", current, peak, usage.workerThreads,
        getMaxValue(usage.workerThreads.maximum), "\t\t}, ");
  block("\t\t\"user_count\": {", userCurrent, closePeak, usage.users,
        limited ? s_notAvailable : orv::String::valueOf(usage.users.maximum), "\t\t},");
  block("\t\t\"session_count\": {", current, closePeak, usage.sessions,
        limited ? getMaxValue(usage.sessions.maximum) : s_notAvailable, "\t\t}, ");
  block("\t\t\"data_in_use_MB\": {", current, closePeak, usage.dataMb,
        limited ? orv::String::valueOf(usage.dataMb.maximum) : s_notAvailable, "\t\t},");
  block("\t\t\"transactions\": {", current, peak, usage.transactions, getMaxValue(0), "\t\t},");
  block("\t\t\"locks\": {", current, peak, locks, getMaxValue(0), "\t\t}");
  put("\t},");
}
