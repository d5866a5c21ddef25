// Whether and how the connection is encrypted, as the option files of the client request it.
#pragma once

#include <mysql.h>

#include <string>
#include <utility>
#include <vector>

#include "tal/mariadb/option_files.h"

namespace tal::mariadb {

struct Encryption {
  bool wanted = false;    // if true, an unencrypted connection is refused
  bool refused = false;   // switched off by the user, even where it would be required
  bool verified = false;  // the server's certificate must be valid for the host
  std::vector<std::pair<mysql_option, std::string>> settings;  // files, ciphers, versions

  // The options for a server on another machine: encryption is required unless it is refused.
  [[nodiscard]] Encryption forNetwork() const;
};

// Reads ssl, ssl-enforce, ssl-verify-server-cert, ssl-ca, ssl-capath, ssl-cert, ssl-key,
// ssl-cipher, ssl-crl, ssl-crlpath and tls-version. Each of them requests encryption. An authority
// (ssl-ca, ssl-capath) also requests verification, unless an option switches that off. "ssl=0" and
// "skip-ssl" refuse encryption, unless ssl-enforce or ssl-verify-server-cert requests it. Throws
// Failure(kTlsFailed) for another option that begins with "ssl" or "tls": an option that is not
// understood must not lead to a plain connection.
Encryption encryptionOf(const Options& options);

}  // namespace tal::mariadb
