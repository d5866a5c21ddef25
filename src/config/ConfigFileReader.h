// Reads the configuration file.
#pragma once

#include <utility>

#include "config/ConfigData.h"
#include "messages/MessageHelper.h"
#include "orv/Collections.h"
#include "orv/Exception.h"
#include "orv/Object.h"
#include "orv/Result.h"
#include "orv/String.h"
#include "orv/io/Readers.h"

// Ends the run with exit code 1. Its description, a text of the message bundle, goes to standard
// error.
class ConfigException : public orv::Exception {
 public:
  ConfigException() = default;
  explicit ConfigException(orv::String description) : Exception(std::move(description)) {}
};

// Lines of key=value: blanks around a line, empty lines, lines that begin with "//" and lines
// without "=" are ignored. Only the first four characters of a key count, in upper or lower case.
// If a key occurs twice, the last line counts. Every key must be present, though most values may be
// empty.
class ConfigFileReader {
 public:
  // Opens nothing yet.
  explicit ConfigFileReader(orv::String fileName);

  // Reads the whole file; the caller owns the settings. Throws ConfigException for settings that
  // are missing and for a line or a file that is too long, orv::io::IoException for a file that is
  // missing or refused, and orv::ResultException for a file that cannot be opened or read for
  // another reason.
  orv::OwningPtr<ConfigData> readConfiguration();

 private:
  void openFile();
  void readWholeFile();
  void readLines();
  void addConfigSetting(const orv::String& line);

  // The value of a key. Throws ConfigException if the key is missing, or if the value is `required`
  // and empty.
  [[nodiscard]] orv::String getValue(const orv::String& key, bool required) const;
  // False for "NO" in any case, true for any other value (deliberate), the default for an empty
  // one.
  [[nodiscard]] bool getBooleanValue(const orv::String& key, bool defaultValue) const;
  // 0 if the text is not a number.
  [[nodiscard]] int getNumber(const orv::String& key) const;

  void setValues();
  void setRefreshRate();
  // Call it after setRefreshRate: without repeated refreshes there is no limit.
  void setRefreshlimit();
  void setOutputTypes();

  // Throws the exception that belongs to an error of opening the file.
  [[noreturn]] void throwError(orv::Result result) const;

  orv::String fileName_;
  orv::Reference<MessageHelper> messages_;
  bool isReadableByOthers_ = false;
  orv::Reference<orv::io::BufferedReader> lines_;
  orv::Reference<orv::collections::StringHashMap> settings_;
  orv::OwningPtr<ConfigData> data_;
};
