#include "monitor/MonitorProcessor.h"
#include "output/FormatHelper.h"
#include "util/Utils.h"

namespace {

enum ValueKind { kText = 0, kNumber = 1, kFlag = 2 };

constexpr int kLabelLength = 21;

}  // namespace

void MonitorProcessor::printConfiguration(bool json) {
  if (json) {
    put("\t\"time\": \"" + Utils::getTime("%FT%T%z") + "\",");
    put("\t\"user_configuration\":");
    put("\t{");
    printConfigurationMembers(json);
    put("\t},");
  } else {
    put("<" + Utils::getTime("%a %b %d %I:%M:%S %Z %Y") + ">");
    put("");
    put(messages_->getResStr("HDR_USR_CONFIG"));
    printConfigurationMembers(json);
    put(messages_->getResStr("HDR_END_CFG"));
    put("");
  }
}

void MonitorProcessor::printConfigurationMembers(bool json) {
  const auto member = [this, json](const char* jsonName, const char* textName,
                                   const orv::String& value, ValueKind kind) {
    printConfigurationNV(json ? jsonName : textName, value, json, kind);
  };
  const auto flag = [json](bool value) -> orv::String {
    if (json) return value ? "true" : "false";
    return value ? "Yes" : "No";
  };
  const ConfigData& config = *config_;
  member("server", "Server", config.server, kText);
  member("refresh_rate(secs)", "Refresh Rate(secs)", orv::String::valueOf(config.refreshRate),
         kNumber);
  member("refresh_limit", "Refresh Limit", orv::String::valueOf(config.refreshLimit), kNumber);
  member("output", "Output", config.outputType, kText);
  member("file_name", "File Name", config.logFileName, kText);
  if (!json) put("//Monitor Activities");
  member("files_statistics", "Files", flag(config.showFiles), kFlag);
  member("sessions_statistics", "Sessions", flag(config.showSessions), kFlag);
  member("connections_statistics", "Connections", flag(config.showConnections), kFlag);
  member("resource_statistics", "Resource Stats", flag(config.showResources), kFlag);
  member("communication_statistics", "Communication Stats", flag(config.showCommunications), kFlag);
  member("handle_detail", "Handle Detail", flag(config.showHandles), kFlag);
}

void MonitorProcessor::printConfigurationNV(const orv::String& name, const orv::String& value,
                                            bool json, int kind) {
  if (!json) {
    orv::String label = name + ":";
    FormatHelper::padToLen(label, kLabelLength);
    put(label + value);
  } else if (name == "handle_detail") {  // the last member: no comma
    put("\t\t\"" + name + "\": " + value);
  } else if (kind == kNumber || kind == kFlag) {
    put("\t\t\"" + name + "\": " + value + ",");
  } else {  // not escaped (deliberate)
    put("\t\t\"" + name + "\": \"" + value + "\",");
  }
}
