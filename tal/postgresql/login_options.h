// What the client library is told about a connection.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace tal::postgresql {

// A setting of the session that a monitor needs to be harmless, in the order of the columns of
// account.sql from the second on: as it is asked for at login, and as the server shows it.
struct Setting {
  const char* name;
  const char* value;
  const char* shown;
};
inline constexpr std::array kSettings = {
  // No object of the database can take the place of a system view.
    Setting{"search_path",                    "pg_catalog",       "pg_catalog"    },
 // Nothing runs long, waits long or writes.
    Setting{"statement_timeout",              "5000",             "5s"            },
    Setting{"lock_timeout",                   "250",              "250ms"         },
    Setting{"idle_session_timeout",           "0",                "0"             },
    Setting{"default_transaction_read_only",  "on",               "on"            },
 // A deferrable transaction waits for others; a serializable one is refused on a standby.
    Setting{"default_transaction_deferrable", "off",              "off"           },
    Setting{"default_transaction_isolation",  "read\\ committed", "read committed"},
};

enum class Encryption : std::uint8_t {
  kNone,
  kUnverified,  // whoever answers may be the server
  kChain,       // its certificate is signed by a root certificate of the user's
  kName,        // and is that of the host
};

struct Target {
  std::string host;     // name, numeric address or socket folder; the password file is asked for it
  std::string address;  // numeric; empty for a socket
  std::uint16_t port = 0;
  std::string database;
  std::string user;
  std::string password;  // empty: only the user's own password file may supply one
  Encryption encryption = Encryption::kNone;
  bool bindsPassword = false;  // the password is used only in a way bound to this very connection
};

// The connection string for a target. It names every parameter that the client library would
// otherwise take from an environment variable, empty ones too (which only this form can do), so
// that a monitor does the same wherever it is started; but variables that can only ask for more
// security are honoured: PGREQUIREPEER, PGREQUIREAUTH, PGSSLROOTCERT, PGSSLCRL, PGSSLCRLDIR,
// PGSSLMINPROTOCOLVERSION. The settings that the library sends besides its parameters are left to
// WithoutSessionVariables.
std::string connectionString(const Target& target);

// At least `least`, and more where PGSSLMODE asks for it.
Encryption encryptionWished(Encryption least);

// Whether PGCHANNELBINDING asks for it.
bool bindingWished();

// Whether the user has root certificates to verify servers by.
bool hasRootCertificate();

// The target's password, or the one that the user's password file has for it. Asks no server.
std::string passwordFor(const Target& target);

}  // namespace tal::postgresql
