// The options of a connection for the client library.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "tal/credentials.h"
#include "tal/postgresql/connection.h"

namespace tal::postgresql {

// A setting of the session that a monitor needs to be harmless, in the order of the columns of
// account.sql from the second on: as it is requested at login, and as the server shows it.
struct Setting {
  const char* name;
  const char* value;
  const char* shown;
};
inline constexpr std::array kSettings = {
  // No object of the database can replace a system view.
    Setting{"search_path",                    "pg_catalog",       "pg_catalog"    },
 // Nothing runs or waits for long, and nothing writes.
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
  kUnverified,  // the server is not verified
  kChain,       // its certificate is signed by a root certificate of the user's
  kName,        // and is that of the host
};

struct Target {
  std::string host;     // name, numeric address or socket folder; used for the password file
  std::string address;  // numeric; empty for a socket
  std::uint16_t port = 0;
  std::string database;
  std::string user;
  Secret password;  // empty: only the user's own password file may supply one
  Encryption encryption = Encryption::kNone;
  bool bindsPassword = false;  // the password must be bound to this connection
  bool scramOnly = false;      // the password must be used in no other way
};

// The connection string for a target, without the password. It names every parameter that the
// client library would otherwise take from an environment variable that is set, also with an empty
// value (which only this form can do), so that a monitor behaves the same wherever it is started.
// Variables that can only request more security are still used: PGREQUIREPEER, PGREQUIREAUTH,
// PGSSLROOTCERT, PGSSLCRL, PGSSLCRLDIR, PGSSLMINPROTOCOLVERSION. A client library of version 16 or
// later itself refuses a server that asks for a password in another way than `target` allows.
std::string connectionString(const Target& target);

// Begins a login to `target` with these parameters and its password.
ConnectionHandle startConnection(const Target& target);

// At least `least`, or more if PGSSLMODE requests it.
Encryption encryptionWished(Encryption least);

// Whether PGCHANNELBINDING requests it.
bool bindingWished();

// Whether the user has root certificates with which servers can be verified.
bool hasRootCertificate();

// The password of the target, or the one in the user's password file. Does not contact the server.
Secret passwordFor(const Target& target);

}  // namespace tal::postgresql
