// The communication statistics section.
#include "monitor/MonitorProcessor.h"
#include "monitor/ReportText.h"

namespace {

// The protocols that the JSON form knows by name.
struct ProtocolKeys {
  long code;
  const char* requests;
  const char* sessions;
};

constexpr ProtocolKeys kProtocolKeys[] = {
    {1,  "\t\t\"spx_requests_processed\": ",     "\t\t\"spx_remote_sessions\": {"    },
    {4,  "\t\t\"tcp_requests_processed\": ",     "\t\t\"tcp/ip_remote_sessions\": {" },
    {12, "\t\t\"netbios_requests_processed\": ", "\t\t\"netbios_remote_sessions\": {"},
};

const ProtocolKeys* keysOf(long code) {
  for (const ProtocolKeys& keys : kProtocolKeys) {
    if (keys.code == code) return &keys;
  }
  return nullptr;
}

bool isNamed(const orv::String& label) { return !label.equalsIgnoreCase(s_notAvailable); }

}  // namespace

void MonitorProcessor::processCommunicationStats(bool json) {
  const auto statistics = engine_->getCommStats();
  if (json) {
    writeCommunicationJson(*statistics);
  } else {
    writeCommunicationText(*statistics);
  }
}

void MonitorProcessor::writeCommunicationText(const CommStats& statistics) {
  output_->putHeader("Communication Statistics", 0);
  put("Total Requests Processed:\t" + unsignedText(statistics.requests), 1);
  for (const auto& protocol : *statistics.protocols) {
    const orv::String label = getProtocolRequestString(static_cast<int>(protocol->code));
    if (isNamed(label)) put(label + ":\t" + unsignedText(protocol->requests), 1);
  }
  put("Total Connection Timeouts:\t" + unsignedText(statistics.timeouts), 1);
  put("Total Connection Recoveries:\t" + unsignedText(statistics.recoveries), 1);
  put("                                Current\t\tPeak\t\tMaximum", 1);
  put(label<32>("Communication Threads:          ") + unsignedText(statistics.threadsCurrent) +
          "\t\t" + unsignedText(statistics.threadsPeak) + "\t\t" +
          getMaxValue(statistics.threadsMaximum),
      1);
  put(label<32>("Total Remote Sessions:          ") + unsignedText(statistics.remoteCurrent) +
          "\t\t" + unsignedText(statistics.remotePeak) + "\t\t" +
          getMaxValue(statistics.remoteMaximum),
      1);
  for (const auto& protocol : *statistics.protocols) {
    const orv::String label = getProtocolSessionString(static_cast<int>(protocol->code));
    if (!isNamed(label)) continue;
    put(label + unsignedText(protocol->currentSessions) + "\t\t" +
            unsignedText(protocol->peakSessions),
        1);
  }
}

void MonitorProcessor::writeCommunicationJson(const CommStats& statistics) {
  put("\t\"communication_statistics\":");
  put("\t{");
  put("\t\t\"total_requests_processed\": " + unsignedText(statistics.requests) + ",");
  for (const auto& protocol : *statistics.protocols) {
    const ProtocolKeys* const keys = keysOf(protocol->code);
    if (keys != nullptr) put(keys->requests + unsignedText(protocol->requests) + ",");
  }
  put("\t\t\"total_connection_timeouts\": " + unsignedText(statistics.timeouts) + ",");
  put("\t\t\"total_connection_recoveries\": " + unsignedText(statistics.recoveries) + ",");
  put("\t\t\"communication_threads\": {");
  put("\t\t\t\"current\": " + unsignedText(statistics.threadsCurrent) + ",");
  put("\t\t\t\"peak\": " + unsignedText(statistics.threadsPeak) + ",");
  put("\t\t\t\"maximum\": \"" + getMaxValue(statistics.threadsMaximum) + "\"");
  put("\t\t},");
  put("\t\t\"total_remote_sessions\": {");
  put("\t\t\t\"current\": " + unsignedText(statistics.remoteCurrent) + ",");
  put("\t\t\t\"peak\": " + unsignedText(statistics.remotePeak) + ",");
  put("\t\t\t\"maximum\": \"" + getMaxValue(statistics.remoteMaximum) + "\"");
  put("\t\t},");
  for (const auto& protocol : *statistics.protocols) {
    const ProtocolKeys* const keys = keysOf(protocol->code);
    if (keys == nullptr) continue;
    put(keys->sessions);
    put("\t\t\t\"current\": " + unsignedText(protocol->currentSessions) + ",");
    put("\t\t\t\"peak\": " + unsignedText(protocol->peakSessions));
    put("\t\t}");  // never a comma, even if more follows (deliberate)
  }
  put("\t}");  // no comma, unlike the other sections (deliberate)
}
