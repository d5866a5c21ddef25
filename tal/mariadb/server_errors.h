// Error numbers of the server and of its client library as statuses of the interface.
#pragma once

#include "tal/status.h"

namespace tal::mariadb {

// The status for an error number. A number of the server that is its own best explanation is passed
// through; one that the table does not know is kServerError.
[[nodiscard]] Status statusOf(unsigned int error);

}  // namespace tal::mariadb
