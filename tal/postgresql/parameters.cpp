#include "tal/postgresql/parameters.h"

#include <libpq-fe.h>

#include <map>
#include <memory>
#include <string_view>

namespace tal::postgresql {
namespace {

using Parameters = std::map<std::string, std::string>;

// search_path: no object of the database can take the place of a system view. The others: nothing
// runs long, waits long or writes.
constexpr const char* kSessionOptions =
    "-c search_path=pg_catalog -c statement_timeout=5000 -c lock_timeout=250 "
    "-c default_transaction_read_only=on -c jit=off -c max_parallel_workers_per_gather=0";

Parameters chosenParameters(const Target& target) {
  return {
      {"host",                target.host                             },
      {"hostaddr",            target.address                          },
      {"port",                std::to_string(target.port)             },
      {"dbname",              target.database                         },
      {"user",                target.user                             },
      {"password",            target.password                         },
      {"application_name",    "zelk"                                  },
 // Texts come as stored: no conversion can fail, whatever encoding a name is in.
      {"client_encoding",     "SQL_ASCII"                             },
      {"options",             kSessionOptions                         },
      {"keepalives",          "1"                                     },
      {"keepalives_idle",     "10"                                    },
      {"keepalives_interval", "5"                                     },
      {"keepalives_count",    "3"                                     },
      {"tcp_user_timeout",    "10000"                                 },
      {"gssencmode",          "disable"                               },
      {"sslmode",             target.requireTls ? "require" : "prefer"},
  };
}

// Adds the built-in default of every parameter that has an environment variable. The service is
// left out: naming even an empty one makes each connection fail.
void addDefaults(Parameters& parameters) {
  const std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)> defaults(PQconndefaults(),
                                                                              &PQconninfoFree);
  if (!defaults) throw std::bad_alloc();
  for (const PQconninfoOption* option = defaults.get(); option->keyword != nullptr; ++option) {
    if (option->envvar == nullptr || std::string_view(option->keyword) == "service") continue;
    parameters.try_emplace(option->keyword, option->compiled != nullptr ? option->compiled : "");
  }
}

std::string quoted(std::string_view value) {
  std::string result = "'";
  for (const char character : value) {
    if (character == '\'' || character == '\\') result += '\\';
    result += character;
  }
  return result + "'";
}

}  // namespace

std::string connectionString(const Target& target) {
  Parameters parameters = chosenParameters(target);
  addDefaults(parameters);

  std::string result;
  for (const auto& [keyword, value] : parameters) result += keyword + '=' + quoted(value) + ' ';
  return result;
}

}  // namespace tal::postgresql
