// One attempt to log in at one address.
#pragma once

#include "tal/postgresql/handles.h"
#include "tal/postgresql/parameters.h"
#include "tal/sql/deadline.h"

namespace tal::postgresql {

// Logs in to `target`. Notices of the server are dropped. Throws Failure with the reason, kNoAnswer
// when `deadline` passes.
ConnectionHandle connectTo(const Target& target, const sql::Deadline& deadline);

}  // namespace tal::postgresql
