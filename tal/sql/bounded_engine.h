// An engine over a server that nobody trusts.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "tal/engine.h"
#include "tal/sql/deadline.h"

namespace tal::sql {

// Opens the engine that gets the limits, and lets the cutter watch its socket as soon as there is
// one. It runs on a thread that may be left behind, so the function and the engine must own
// everything that they use. They have their own time limits; these limits work if those fail.
using OpenUnbounded = std::function<std::unique_ptr<Engine>(SocketCutter&)>;

// The engine that `open` makes, with these promises added:
//
// - `open` and every call end within `limit`, whatever the server makes the client library do.
//   After it the caller gets Failure(kNoAnswer), the socket is shut down, and the thread that is
//   still working is left behind with the engine (see Worker).
// - After that, and after a call that threw Failure(kConnectionLost), every call throws
//   Failure(kConnectionLost): a lost session is never opened again, so that no report mixes two.
// - No text has a quotation mark or a backslash: each becomes "?". Otherwise a user of the server
//   could break or forge a report in JSON.
//
// Throws what `open` throws; the text of an ExplainedFailure goes to standard error, unless that is
// the same file or pipe as standard output, which may hold a report.
std::unique_ptr<Engine> openBounded(OpenUnbounded open,
                                    std::chrono::milliseconds limit = kCallLimit);

}  // namespace tal::sql
