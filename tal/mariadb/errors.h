// Error numbers of the server and of its client library as statuses of the interface.
#pragma once

#include "tal/status.h"

namespace tal::mariadb {

// The status for an error number. A server error that explains itself best by its own number is
// passed through; a number that the table does not know is kServerError.
[[nodiscard]] Status statusOf(unsigned int error);

}  // namespace tal::mariadb
