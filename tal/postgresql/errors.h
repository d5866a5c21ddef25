// From the server's error codes to statuses. Message texts are in the server's language and decide
// nothing.
#pragma once

#include <string_view>

#include "tal/status.h"

namespace tal::postgresql {

// The status for an SQLSTATE, the server's five-character error code. Codes without one of their
// own, and an empty text, are kServerError.
Status statusOf(std::string_view sqlState);

// The SQLSTATE in the text of a failed login, which at the verbosity PQERRORS_SQLSTATE ends each
// line from the server: the first one, or an empty text when the client library alone failed.
std::string_view sqlStateIn(std::string_view message);

}  // namespace tal::postgresql
