// The lines that this library itself writes on standard error.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "tal/status.h"

namespace tal::sql {

// The text of "ORV_MSG_P_N_" and `name` in the message bundle TALMSG, in the language that LANGUAGE
// and the locale of the process request; `name` itself if no bundle has it. The bundles are in
// ../../share/zelk/messages, relative to the folder of this library.
std::string message(std::string_view name);

// Writes one line to standard error, without characters that control a terminal. Writes nothing if
// that is the same file or pipe as standard output, which may hold a report.
void tell(std::string line);

// A failure that a status alone does not explain. The explanation has facts that only the engine
// knows: the host and port that were tried, and the reason of the system. It goes to standard error
// as one line, before the text of the status, so it must not have control characters.
class ExplainedFailure : public Failure {
 public:
  ExplainedFailure(Status status, std::string explanation)
      : Failure(status), explanation_(std::move(explanation)) {}

  [[nodiscard]] const std::string& explanation() const noexcept { return explanation_; }

 private:
  std::string explanation_;
};

}  // namespace tal::sql
