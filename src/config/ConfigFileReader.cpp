#include "config/ConfigFileReader.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>

#include "orv/Exception.h"
#include "orv/Parsing.h"
#include "orv/io/InputStreams.h"
#include "orv/io/Readers.h"
#include "util/Utils.h"

namespace {

constexpr std::size_t kBufferSize = 2048;
constexpr std::size_t kLargestFile = 4U << 20U;
constexpr int kMapCapacity = 101;
constexpr float kMapLoadFactor = 0.75F;
constexpr std::size_t kKeyLength = 4;
constexpr int kSmallestRefreshRate = 5;

constexpr const char* kServer = "SERV";
constexpr const char* kUser = "USER";
constexpr const char* kPassword = "PASS";
constexpr const char* kRefreshRate = "REFR";
constexpr const char* kRefreshLimit = "LIMI";
constexpr const char* kOutput = "OUTP";
constexpr const char* kLogFileName = "NAME";
constexpr const char* kFiles = "FILE";
constexpr const char* kSessions = "SESS";
constexpr const char* kConnections = "CONN";
constexpr const char* kResources = "RESO";
constexpr const char* kCommunications = "COMM";
constexpr const char* kHandles = "HAND";

constexpr const char* kKeys[] = {
    kServer, kUser,     kPassword,    kRefreshRate, kRefreshLimit,   kOutput, kLogFileName,
    kFiles,  kSessions, kConnections, kResources,   kCommunications, kHandles};

// Other keys are not kept, so that a large file does not use much memory.
bool isKnown(const orv::String& key) {
  return std::find(std::begin(kKeys), std::end(kKeys), key) != std::end(kKeys);
}

bool isComment(const orv::String& line) { return line.startsWith("//"); }

}  // namespace

ConfigFileReader::ConfigFileReader(orv::String fileName)
    : fileName_(std::move(fileName)),
      messages_(orv::makeReference<MessageHelper>("ZELK", "ZELK_")) {}

orv::OwningPtr<ConfigData> ConfigFileReader::readConfiguration() {
  openFile();
  settings_ = orv::makeReference<orv::collections::StringHashMap>(kMapCapacity, kMapLoadFactor);
  readWholeFile();
  data_ = orv::makeOwned<ConfigData>();
  setValues();
  settings_->wipe();  // the password is among them
  return std::move(data_);
}

void ConfigFileReader::openFile() {
  try {
    const auto file = orv::makeReference<orv::io::FileInputStream>(fileName_, kLargestFile);
    isReadableByOthers_ = file->isReadableByOthers();
    lines_ = orv::makeReference<orv::io::BufferedReader>(
        orv::makeReference<orv::io::InputStreamReader>(file, kBufferSize));
  } catch (const orv::Exception& exception) {
    throwError(exception.getResult());
  }
}

void ConfigFileReader::readWholeFile() {
  try {
    readLines();
  } catch (const orv::ResultException& exception) {
    if (exception.getResult() != orv::kFileTooLarge) throw;
    throw ConfigException(messages_->getResStr("ERR_FILE_TOO_LARGE"));
  }
  lines_ = {};  // its buffers are wiped, which held the password
}

void ConfigFileReader::readLines() {
  orv::String line;
  while (lines_->readLine(line)) {
    orv::String trimmed = line.trim();
    if (isComment(trimmed)) continue;
    if (lines_->isLineCut() && (trimmed.contains('=') || lines_->restOfLineHas(L'='))) {
      throw ConfigException(messages_->getResStr("ERR_LINE_TOO_LONG"));
    }
    addConfigSetting(trimmed);
    trimmed.wipe();
    line.wipe();
  }
}

void ConfigFileReader::addConfigSetting(const orv::String& line) {
  if (!line.contains('=')) return;
  orv::util::StringTokenizer pieces(line, '=');
  if (!pieces.hasMoreTokens()) return;
  const orv::String key = pieces.nextToken().first(kKeyLength).toUpper();
  if (!isKnown(key)) return;
  // A second "=" empties the value (deliberate).
  settings_->put(key, pieces.countTokens() == 1 ? pieces.nextToken() : orv::String());
}

orv::String ConfigFileReader::getValue(const orv::String& key, bool required) const {
  const orv::String* const value = settings_->get(key);
  const std::string name = key.toBytes();
  if (value == nullptr) {
    throw ConfigException(messages_->getResStr("ERR_MISSING_TAG", name.c_str()));
  }
  if (required && value->isEmpty()) {
    throw ConfigException(messages_->getResStr("ERR_MISSING_TAG_VALUE", name.c_str()));
  }
  return *value;
}

bool ConfigFileReader::getBooleanValue(const orv::String& key, bool defaultValue) const {
  const orv::String value = getValue(key, false);
  return value.isEmpty() ? defaultValue : !value.equalsIgnoreCase("NO");
}

int ConfigFileReader::getNumber(const orv::String& key) const {
  try {
    return Utils::parseInt(getValue(key, false));
  } catch (const NumberFormatException&) {
    return 0;
  }
}

void ConfigFileReader::setValues() {
  data_->server = getValue(kServer, true);
  data_->user = getValue(kUser, false);
  data_->password = getValue(kPassword, false);
  data_->isPasswordExposed = isReadableByOthers_ && !data_->password.isEmpty();
  setRefreshRate();
  setRefreshlimit();
  setOutputTypes();
  data_->logFileName = getValue(kLogFileName, false);
  if (data_->logFileName.isEmpty()) data_->logFileName = "monitor.log";
  data_->showFiles = getBooleanValue(kFiles, true);
  data_->showSessions = getBooleanValue(kSessions, true);
  data_->showConnections = getBooleanValue(kConnections, true);
  data_->showResources = getBooleanValue(kResources, true);
  data_->showCommunications = getBooleanValue(kCommunications, true);
  data_->showHandles = getBooleanValue(kHandles, true);
}

void ConfigFileReader::setRefreshRate() {
  const int rate = getNumber(kRefreshRate);
  data_->refreshRate = rate <= 0 ? 0 : std::max(rate, kSmallestRefreshRate);
}

void ConfigFileReader::setRefreshlimit() {
  const int limit = getNumber(kRefreshLimit);
  data_->refreshLimit = data_->refreshRate <= 0 ? 0 : std::max(limit, 0);
}

void ConfigFileReader::setOutputTypes() {
  data_->outputType = getValue(kOutput, true);
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
