// Error numbers of the server and of its client library as statuses of the interface.
#pragma once

#include "tal/status.h"

namespace tal::mariadb {

// The status for an error number. Some errors of the server are clearest by their own numbers,
// which are passed through. A number that the table does not know is kServerError.
[[nodiscard]] Status statusOf(unsigned int error);

}  // namespace tal::mariadb
