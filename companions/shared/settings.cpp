#include "companions/shared/settings.h"

#include <cstddef>

#include "config/ConfigFileReader.h"
#include "messages/MessageHelper.h"

namespace companions {
namespace {

constexpr std::size_t kLongestCredential = 255;

// A text that is cut would be a different name or password.
std::string credential(const orv::String& value) {
  std::string text = value.toBytes();
  if (text.size() > kLongestCredential || text.find('\0') != std::string::npos) {
    throw ConfigException(MessageHelper("ZELK", "ZELK_").getResStr("ERR_CREDENTIALS_TOO_LONG"));
  }
  return text;
}

}  // namespace

Settings readSettings(const std::string& fileName) {
  ConfigFileReader reader{orv::String(fileName)};
  const auto data = reader.readConfiguration();
  return {
      {credential(data->server), credential(data->user), credential(data->password)},
      data->refreshRate,
      { data->showFiles, data->showSessions,      data->showConnections,                                                     data->showResources,
       data->showCommunications}
  };
}

}  // namespace companions
