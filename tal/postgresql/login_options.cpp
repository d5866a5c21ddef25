#include "tal/postgresql/login_options.h"

#include <libpq-fe.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string_view>

namespace tal::postgresql {
namespace {

using Parameters = std::map<std::string, std::string>;

constexpr std::string_view kHonoured[] = {"requirepeer", "require_auth",
                                          "sslrootcert", "sslcrl",
                                          "sslcrldir",   "ssl_min_protocol_version"};

// A login without a password shows none.
constexpr const char* kScramOnly = "scram-sha-256,none";

struct Mode {
  std::string_view name;
  Encryption encryption;
};
constexpr Mode kModes[] = {
    {"disable",     Encryption::kNone      },
    {"require",     Encryption::kUnverified},
    {"verify-ca",   Encryption::kChain     },
    {"verify-full", Encryption::kName      },
};

std::string variable(const char* name) {
  const char* const value = ::getenv(name);
  return value != nullptr ? value : "";
}

std::string sessionOptions() {
  std::string options;
  for (const Setting& setting : kSettings) {
    options += std::string("-c ") + setting.name + '=' + setting.value + ' ';
  }
  return options + "-c jit=off -c max_parallel_workers_per_gather=0";
}

std::string modeOf(Encryption encryption) {
  return std::string(std::ranges::find(kModes, encryption, &Mode::encryption)->name);
}

Parameters chosenParameters(const Target& target) {
  return {
      {"host",                target.host                                },
      {"hostaddr",            target.address                             },
      {"port",                std::to_string(target.port)                },
      {"dbname",              target.database                            },
      {"user",                target.user                                },
      {"application_name",    "zelk"                                     },
 // Texts come as they are stored: no conversion can fail, whatever the encoding of a name.
      {"client_encoding",     "SQL_ASCII"                                },
      {"options",             sessionOptions()                           },
      {"keepalives",          "1"                                        },
      {"keepalives_idle",     "10"                                       },
      {"keepalives_interval", "5"                                        },
      {"keepalives_count",    "3"                                        },
      {"tcp_user_timeout",    "10000"                                    },
      {"gssencmode",          "disable"                                  },
      {"sslmode",             modeOf(target.encryption)                  },
      {"channel_binding",     target.bindsPassword ? "require" : "prefer"},
  };
}

// What a parameter is to be in place of its variable.
std::string fallback(const PQconninfoOption& option) {
  const std::string_view keyword = option.keyword;
  if (std::ranges::find(kHonoured, keyword) != std::end(kHonoured)) return variable(option.envvar);
  if (keyword == "sslcertmode") return "allow";  // its default, for which nothing does not stand
  return option.compiled != nullptr ? option.compiled : "";
}

// Adds every parameter whose environment variable is set. The service is left out, because even an
// empty one makes every connection fail.
void addDefaults(Parameters& parameters, const Target& target) {
  const std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)> defaults(PQconndefaults(),
                                                                              &PQconninfoFree);
  if (!defaults) throw std::bad_alloc();
  for (const PQconninfoOption* option = defaults.get(); option->keyword != nullptr; ++option) {
    const std::string_view keyword = option->keyword;
    if (option->envvar == nullptr || keyword == "service") continue;
    const bool isFree = variable(option->envvar).empty();
    if (keyword == "require_auth" && target.scramOnly && isFree) {
      parameters.try_emplace(option->keyword, kScramOnly);
    } else if (::getenv(option->envvar) != nullptr) {
      parameters.try_emplace(option->keyword, fallback(*option));
    }
  }
}

// Otherwise the library would use an existing certificate for every server and refuse one that it
// cannot verify.
void leaveCertificatesOut(Parameters& parameters) { parameters["sslrootcert"] = "/dev/null/none"; }

void append(std::string& result, std::string_view keyword, std::string_view value) {
  result.append(keyword).append("='");
  for (const char character : value) {
    if (character == '\'' || character == '\\') result += '\\';
    result += character;
  }
  result += "' ";
}

}  // namespace

std::string connectionString(const Target& target) {
  Parameters parameters = chosenParameters(target);
  if (target.encryption == Encryption::kUnverified) leaveCertificatesOut(parameters);
  addDefaults(parameters, target);

  std::string result;
  for (const auto& [keyword, value] : parameters) append(result, keyword, value);
  return result;
}

Encryption encryptionWished(Encryption least) {
  const auto* const mode = std::ranges::find(kModes, variable("PGSSLMODE"), &Mode::name);
  return mode != std::end(kModes) ? std::max(least, mode->encryption) : least;
}

bool bindingWished() { return variable("PGCHANNELBINDING") == "require"; }

bool hasRootCertificate() {
  const std::string wished = variable("PGSSLROOTCERT");
  const std::string home = variable("HOME");
  const std::string path = wished.empty() ? home + "/.postgresql/root.crt" : wished;
  return wished == "system" || ::access(path.c_str(), F_OK) == 0;
}

ConnectionHandle startConnection(const Target& target) {
  const std::string parameters = connectionString(target);
  // A name of a database that is a connection string stands for the parameters in it. A later
  // parameter replaces an earlier one unless it is empty.
  const std::array<const char*, 3> keywords{"dbname", "password", nullptr};
  const std::array<const char*, 3> values{parameters.c_str(), target.password.text().c_str(),
                                          nullptr};
  ConnectionHandle connection(PQconnectStartParams(keywords.data(), values.data(), 1));
  if (!connection) throw std::bad_alloc();
  return connection;
}

Secret passwordFor(const Target& target) {
  if (!target.password.empty()) return target.password;
  Target nowhere = target;
  nowhere.address.assign(1, '-');  // no numeric address: nothing is connected to
  const ConnectionHandle connection = startConnection(nowhere);
  const char* const password = PQpass(connection.get());
  return password != nullptr ? password : "";
}

}  // namespace tal::postgresql
