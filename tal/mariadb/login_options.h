// Whether and how the connection is encrypted, as the client's option files ask for it.
#pragma once

#include <mysql.h>

#include <string>
#include <utility>
#include <vector>

#include "tal/mariadb/option_files.h"

namespace tal::mariadb {

struct Encryption {
  bool wanted = false;    // when it is, an unencrypted connection is refused
  bool refused = false;   // switched off by the user, even where it would be required
  bool verified = false;  // the server's certificate must be valid for the host
  std::vector<std::pair<mysql_option, std::string>> settings;  // files, ciphers, versions

  // For a server on another machine, where it is required unless it is refused.
  [[nodiscard]] Encryption forNetwork() const;
};

// Reads ssl, ssl-enforce, ssl-verify-server-cert, ssl-ca, ssl-capath, ssl-cert, ssl-key,
// ssl-cipher, ssl-crl, ssl-crlpath and tls-version. Each of them asks for encryption, and an
// authority (ssl-ca, ssl-capath) for verification unless that is switched off by name. "ssl=0" and
// "skip-ssl" refuse it, unless ssl-enforce or ssl-verify-server-cert asks for it. Throws
// Failure(kTlsFailed) for another option that begins with "ssl" or "tls": an option that is not
// understood must not end in a plain connection.
Encryption encryptionOf(const Options& options);

}  // namespace tal::mariadb
