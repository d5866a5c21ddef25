// Turns the error codes of the server into statuses. Message texts do not matter, because they are
// in the server's language.
#pragma once

#include <string_view>

#include "tal/status.h"

namespace tal::postgresql {

// The status for an SQLSTATE, the server's five-character error code. A code without a status of
// its own, and an empty text, is kServerError.
Status statusOf(std::string_view sqlState);

// The first SQLSTATE in the text of a failed login. With the verbosity PQERRORS_SQLSTATE each line
// of the server ends with one. An empty text if the failure is of the client library alone.
std::string_view sqlStateIn(std::string_view message);

}  // namespace tal::postgresql
