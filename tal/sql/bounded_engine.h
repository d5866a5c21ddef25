// An engine over a server that nobody trusts.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "tal/engine.h"
#include "tal/sql/deadline.h"
#include "tal/sql/socket_cutter.h"

namespace tal::sql {

// Opens the engine that is to be bounded, and lets the cutter watch its socket as soon as there is
// one. It runs on a thread that may be left behind, so the function and the engine must own what
// they use. They keep time limits of their own; this is the wall behind them.
using OpenUnbounded = std::function<std::unique_ptr<Engine>(SocketCutter&)>;

// The engine that `open` makes, with these promises added:
//
// - `open` and every call end within `limit`, whatever the server makes the client library do. Past
//   it the caller gets Failure(kNoAnswer), the socket is cut, and the thread that is still at work
//   is left behind with the engine (see Worker).
// - After that, and after a call that threw Failure(kConnectionLost), every call throws
//   Failure(kConnectionLost): a lost session is never opened again, so that no report mixes two.
// - No text has a quotation mark or a backslash: "?" stands there. A user of the server could
//   otherwise break or forge a report in JSON.
//
// Throws what `open` throws; the text of an ExplainedFailure goes to standard error, unless that is
// the file or pipe of standard output, where a report may be.
std::unique_ptr<Engine> openBounded(OpenUnbounded open,
                                    std::chrono::milliseconds limit = kCallLimit);

}  // namespace tal::sql
