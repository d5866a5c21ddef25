#include "tal/mariadb/login_options.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "tal/status.h"

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
constexpr std::string_view kOff = "skip-ssl";
constexpr std::string_view kEnforce = "ssl-enforce";
constexpr std::string_view kVerify = "ssl-verify-server-cert";

bool isSwitch(std::string_view name) {
  return name == kOnOff || name == kEnforce || name == kVerify;
}

bool isOn(std::string value) {
  std::ranges::transform(value, value.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
  });
  return value != "0" && value != "off" && value != "false";
}

// Nothing if the switch is absent.
std::optional<bool> switchOf(const Options& options, std::string_view name) {
  const auto option = options.find(name);
  return option == options.end() ? std::nullopt : std::optional(isOn(option->second));
}

// Null for any other name.
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
  const bool hasAuthority = options.contains("ssl-ca") || options.contains("ssl-capath");
  const bool asked = switchOf(options, kVerify) == true || switchOf(options, kEnforce) == true;
  result.refused =
      (switchOf(options, kOnOff) == false || switchOf(options, kOff) == true) && !asked;
  result.verified = !result.refused && switchOf(options, kVerify).value_or(hasAuthority);
  result.wanted = !result.refused && (asked || result.verified || !result.settings.empty() ||
                                      switchOf(options, kOnOff) == true);
  return result;
}

Encryption Encryption::forNetwork() const {
  Encryption result = *this;
  result.wanted = !refused;
  return result;
}

}  // namespace tal::mariadb
