// Configuration files of tests.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "config/ConfigFileReader.h"
#include "tests/support/temporary_folder.h"
#include "tests/unit/message_folder.h"

namespace testing_support {

// A complete configuration, to be changed.
class Configuration {
 public:
  // Replaces the value of a key.
  Configuration& with(std::string_view key, std::string_view value) {
    for (auto& [name, text] : settings_) {
      if (name == key) text = value;
    }
    return *this;
  }
  Configuration& without(std::string_view key) {
    std::erase_if(settings_, [key](const auto& setting) { return setting.first == key; });
    return *this;
  }
  // Puts a line behind all others.
  Configuration& withLine(std::string_view line) {
    lines_ += std::string(line) + "\n";
    return *this;
  }

  [[nodiscard]] std::string text() const {
    std::string all;
    for (const auto& [name, text] : settings_) all += name + "=" + text + "\n";
    return all + lines_;
  }

 private:
  std::vector<std::pair<std::string, std::string>> settings_ = {
      {"SERV", "dbhost1"    },
      {"USER", "admin"      },
      {"PASS", "secret"     },
      {"REFR", "10"         },
      {"LIMI", "0"          },
      {"OUTP", "BOTH"       },
      {"NAME", "monitor.log"},
      {"FILE", "YES"        },
      {"SESS", "YES"        },
      {"CONN", "YES"        },
      {"RESO", "YES"        },
      {"COMM", "YES"        },
      {"HAND", "YES"        },
  };
  std::string lines_;
};

// Reads configurations from files of its own, with messages of its own.
class ConfigurationFolder {
 public:
  ConfigurationFolder() {
    messages_.add("ZELK.properties",
                  "ZELK_ERR_READ_FILE=cannot read %s: %s (%08X)\n"
                  "ZELK_FILE_NOT_FOUND_ERROR=not found\n"
                  "ZELK_ACCESS_ERROR=refused\n"
                  "ZELK_ERR_LINE_TOO_LONG=line too long\n"
                  "ZELK_ERR_FILE_TOO_LARGE=file too large\n"
                  "ZELK_ERR_MISSING_TAG=missing %s\n"
                  "ZELK_ERR_MISSING_TAG_VALUE=no value for %s\n");
  }

  [[nodiscard]] orv::OwningPtr<ConfigData> read(std::string_view text) const {
    const auto path = messages_ / "zelk.cfg";
    writeFile(path, text);
    return readPath(path.string());
  }

  [[nodiscard]] orv::OwningPtr<ConfigData> readPath(const std::string& path) const {
    return ConfigFileReader(orv::String(path)).readConfiguration();
  }

  [[nodiscard]] std::filesystem::path operator/(const std::string& name) const {
    return messages_ / name;
  }

 private:
  MessageFolder messages_;
};

}  // namespace testing_support
