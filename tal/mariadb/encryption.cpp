#include "tal/mariadb/encryption.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "tal/failure.h"

namespace tal::mariadb {
namespace {

struct Setting {
  std::string_view name;
  mysql_option option;
};

constexpr auto kSettings = std::to_array<Setting>({
    {"ssl-ca",      MYSQL_OPT_SSL_CA       },
    {"ssl-capath",  MYSQL_OPT_SSL_CAPATH   },
    {"ssl-cert",    MYSQL_OPT_SSL_CERT     },
    {"ssl-key",     MYSQL_OPT_SSL_KEY      },
    {"ssl-cipher",  MYSQL_OPT_SSL_CIPHER   },
    {"ssl-crl",     MYSQL_OPT_SSL_CRL      },
    {"ssl-crlpath", MYSQL_OPT_SSL_CRLPATH  },
    {"tls-version", MARIADB_OPT_TLS_VERSION},
});

constexpr std::string_view kOnOff = "ssl";
constexpr std::string_view kEnforce = "ssl-enforce";
constexpr std::string_view kVerify = "ssl-verify-server-cert";

bool isSwitch(std::string_view name) {
  return name == kOnOff || name == kEnforce || name == kVerify;
}

bool isSwitchedOn(const Options& options, std::string_view name) {
  const auto option = options.find(name);
  if (option == options.end()) return false;

  std::string value = option->second;
  std::transform(value.begin(), value.end(), value.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; });
  return value != "0" && value != "off" && value != "false";
}

// Null for a name that is none of them.
const Setting* settingOf(std::string_view name) {
  const auto* const found = std::find_if(kSettings.begin(), kSettings.end(),
                                         [&](const Setting& s) { return s.name == name; });
  return found == kSettings.end() ? nullptr : found;
}

}  // namespace

Encryption encryptionOf(const Options& options) {
  Encryption result;
  for (const auto& [name, value] : options) {
    if (const Setting* const setting = settingOf(name)) {
      result.settings.emplace_back(setting->option, value);
    } else if ((name.starts_with("ssl") || name.starts_with("tls")) && !isSwitch(name)) {
      throw Failure(Status::kTlsFailed);
    }
  }
  result.verified = isSwitchedOn(options, kVerify);
  const bool implied = !result.settings.empty() && !options.contains(kOnOff);
  result.wanted = result.verified || implied || isSwitchedOn(options, kOnOff) ||
                  isSwitchedOn(options, kEnforce);
  return result;
}

}  // namespace tal::mariadb
