// Which servers are trusted with less security than others.
#pragma once

#include <string>

#include "tal/postgresql/location.h"

namespace tal::postgresql {

struct Exceptions {
  bool weakPassword = false;  // it may ask for the password in clear text, by MD5, or unbound
  bool unencrypted = false;   // it may be on another machine and offer no encryption
};

// What the first line for this server says, in the user's file ~/.postgresql/zelk.conf, then in the
// host's, /etc/zelk/postgresql.conf. A line has the host or the socket folder as it stands in the
// server name, perhaps ":" and a port, and after it one or both of the words "weak-password" and
// "unencrypted". Empty lines and lines that begin with "#" are passed over. A file of another user
// than this one or root, or one that others may write, counts as absent; so does one that is no
// regular file or larger than 64 KiB.
Exceptions exceptionsFor(const Location& location);

// The same by the text of a file.
Exceptions exceptionsIn(const std::string& text, const Location& location);

}  // namespace tal::postgresql
