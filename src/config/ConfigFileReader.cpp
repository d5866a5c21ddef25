#include "config/ConfigFileReader.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>

#include "orv/Exception.h"
#include "orv/Parsing.h"
#include "orv/io/InputStreams.h"
#include "orv/io/Readers.h"
#include "util/Utils.h"

namespace {

constexpr std::size_t kBufferSize = 2048;
constexpr int kMapCapacity = 101;
constexpr float kMapLoadFactor = 0.75F;
constexpr std::size_t kKeyLength = 4;
constexpr int kSmallestRefreshRate = 5;

constexpr std::wstring_view kKeys[] = {L"SERV", L"USER", L"PASS", L"REFR", L"LIMI",
                                       L"OUTP", L"NAME", L"FILE", L"SESS", L"CONN",
                                       L"RESO", L"COMM", L"HAND"};

// Other keys are not kept, so that the size of the file does not matter.
bool isKnown(const orv::String& key) {
  return std::find(std::begin(kKeys), std::end(kKeys), key.wide()) != std::end(kKeys);
}

bool isComment(const orv::String& line) { return line.startsWith(L"//"); }

}  // namespace

ConfigFileReader::ConfigFileReader(orv::String fileName)
    : fileName_(std::move(fileName)),
      messages_(orv::makeReference<MessageHelper>("ZELK", "ZELK_")) {}

orv::OwningPtr<ConfigData> ConfigFileReader::readConfiguration() {
  openFile();
  settings_ = orv::makeReference<orv::collections::StringHashMap>(kMapCapacity, kMapLoadFactor);
  readLines();
  data_ = orv::makeOwned<ConfigData>();
  setValues();
  return std::move(data_);
}

void ConfigFileReader::openFile() {
  try {
    lines_ =
        orv::makeReference<orv::io::BufferedReader>(orv::makeReference<orv::io::InputStreamReader>(
            orv::makeReference<orv::io::FileInputStream>(fileName_), kBufferSize));
  } catch (const orv::Exception& exception) {
    throwError(exception.getResult());
  }
}

void ConfigFileReader::readLines() {
  orv::String line;
  while (lines_->readLine(line)) {
    const orv::String trimmed = line.trim();
    if (isComment(trimmed)) continue;
    if (lines_->isLineCut() && (trimmed.contains(L'=') || lines_->restOfLineHas(L'='))) {
      throw ConfigException(messages_->getResStr("ERR_LINE_TOO_LONG"));
    }
    addConfigSetting(trimmed);
  }
}

void ConfigFileReader::addConfigSetting(const orv::String& line) {
  if (!line.contains(L'=')) return;
  orv::util::StringTokenizer pieces(line, L'=');
  if (!pieces.hasMoreTokens()) return;
  const orv::String key = pieces.nextToken().first(kKeyLength).toUpper();
  if (!isKnown(key)) return;
  // A second "=" empties the value (deliberate).
  settings_->put(key, pieces.countTokens() == 1 ? pieces.nextToken() : orv::String());
}

orv::String ConfigFileReader::getValue(const char* key, bool required) const {
  const orv::String* const value = settings_->get(key);
  if (value == nullptr) throw ConfigException(messages_->getResStr("ERR_MISSING_TAG", key));
  if (required && value->isEmpty()) {
    throw ConfigException(messages_->getResStr("ERR_MISSING_TAG_VALUE", key));
  }
  return *value;
}

bool ConfigFileReader::getBooleanValue(const char* key, bool defaultValue) const {
  const orv::String value = getValue(key, false);
  return value.isEmpty() ? defaultValue : !value.equalsIgnoreCase("NO");
}

int ConfigFileReader::getNumber(const char* key) const {
  try {
    return Utils::parseInt(getValue(key, false));
  } catch (const NumberFormatException&) {
    return 0;
  }
}

void ConfigFileReader::setValues() {
  data_->server = getValue("SERV", true);
  data_->user = getValue("USER", false);
  data_->password = getValue("PASS", false);
  setRefreshRate();
  setRefreshlimit();
  setOutputTypes();
  data_->logFileName = getValue("NAME", false);
  if (data_->logFileName.isEmpty()) data_->logFileName = "monitor.log";
  data_->showFiles = getBooleanValue("FILE", true);
  data_->showSessions = getBooleanValue("SESS", true);
  data_->showConnections = getBooleanValue("CONN", true);
  data_->showResources = getBooleanValue("RESO", true);
  data_->showCommunications = getBooleanValue("COMM", true);
  data_->showHandles = getBooleanValue("HAND", true);
}

void ConfigFileReader::setRefreshRate() {
  const int rate = getNumber("REFR");
  data_->refreshRate = rate <= 0 ? 0 : std::max(rate, kSmallestRefreshRate);
}

void ConfigFileReader::setRefreshlimit() {
  const int limit = getNumber("LIMI");
  data_->refreshLimit = data_->refreshRate <= 0 ? 0 : std::max(limit, 0);
}

void ConfigFileReader::setOutputTypes() {
  data_->outputType = getValue("OUTP", true);
  const orv::String type = data_->outputType.first(kKeyLength);
  const bool isBoth = type.equalsIgnoreCase("BOTH");
  data_->consoleOutput = isBoth || type.equalsIgnoreCase("CONS");
  data_->fileOutput = isBoth || !data_->consoleOutput;
}

void ConfigFileReader::throwError(orv::Result result) const {
  if (result != orv::kAccessDenied && result != orv::kFileNotFound) {
    throw orv::ResultException(result);
  }
  const orv::String reason =
      messages_->getResStr(result == orv::kAccessDenied ? "ACCESS_ERROR" : "FILE_NOT_FOUND_ERROR");
  throw orv::io::IoException(messages_->getResStr("ERR_READ_FILE", fileName_.toBytes().c_str(),
                                                  reason.toBytes().c_str(), result));
}
