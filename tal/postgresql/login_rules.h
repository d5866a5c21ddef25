// The rules for a server: the encryption that a login needs, and the use of the password.
#pragma once

#include <string>
#include <vector>

#include "tal/postgresql/location.h"
#include "tal/postgresql/login_options.h"

namespace tal::postgresql {

// The rules for one server. The user may request more encryption than these rules (see
// login_options.h), but less only by an exception.
struct LoginRules {
  bool isElsewhere = false;   // on another machine, as far as its addresses say
  bool weakPassword = false;  // it may ask for the password in clear text, by MD5, or unbound
  bool unencrypted = false;   // it may be on another machine and offer no encryption

  // The first attempt. On another machine the certificate and the host name are verified if the
  // user has root certificates.
  [[nodiscard]] Encryption encryption() const;

  // Whether to log in without encryption if the server offers none.
  [[nodiscard]] bool mayGoWithout() const;
};

// The rules for a server at these numeric addresses; none for a socket. Exceptions come from the
// first line for this server in the user's file ~/.postgresql/zelk.conf, then in the file of the
// host, /etc/zelk/postgresql.conf. A line has the host or the socket folder as in the server name,
// optionally ":" and a port, and then one or both of the words "weak-password" and "unencrypted".
// Empty lines and lines that begin with "#" are skipped. A file is ignored if it belongs neither to
// this user nor to root, if others may write it, if it is not a regular file, or if it is larger
// than 64 KiB.
LoginRules rulesFor(const Location& location, const std::vector<std::string>& addresses);

// The rules with the exceptions in the text of a file.
LoginRules rulesIn(const std::string& text, const Location& location);

}  // namespace tal::postgresql
