// What a server may be given: which encryption a login needs, and what may be done with a password.
#pragma once

#include <string>
#include <vector>

#include "tal/postgresql/location.h"
#include "tal/postgresql/login_options.h"

namespace tal::postgresql {

// For one server. More encryption than these rules ask for may be wished by the user (see
// login_options.h), less only by an exception.
struct LoginRules {
  bool isElsewhere = false;   // on another machine, as far as its addresses say
  bool weakPassword = false;  // it may ask for the password in clear text, by MD5, or unbound
  bool unencrypted = false;   // it may be on another machine and offer no encryption

  // What is tried first. On another machine the certificate is verified with the host's name, where
  // the user has root certificates to do so.
  [[nodiscard]] Encryption encryption() const;

  // Whether a server that offers no encryption is logged in to without.
  [[nodiscard]] bool mayGoWithout() const;
};

// The rules for a server at these numeric addresses; none for a socket. Exceptions are what the
// first line for this server says, in the user's file ~/.postgresql/zelk.conf, then in the host's,
// /etc/zelk/postgresql.conf. A line has the host or the socket folder as it stands in the server
// name, perhaps ":" and a port, and after it one or both of the words "weak-password" and
// "unencrypted". Empty lines and lines that begin with "#" are passed over. A file of another user
// than this one or root, or one that others may write, counts as absent; so does one that is no
// regular file or larger than 64 KiB.
LoginRules rulesFor(const Location& location, const std::vector<std::string>& addresses);

// Rules with the exceptions by the text of a file.
LoginRules rulesIn(const std::string& text, const Location& location);

}  // namespace tal::postgresql
