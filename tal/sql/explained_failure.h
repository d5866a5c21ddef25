// A failure that a status alone does not explain.
#pragma once

#include <string>
#include <utility>

#include "tal/status.h"

namespace tal::sql {

// The explanation has facts that only the engine knows: the host and port that were tried, and the
// reason of the system. It goes to standard error as one line, before the text of the status, so it
// must not have control characters.
class ExplainedFailure : public Failure {
 public:
  ExplainedFailure(Status status, std::string explanation)
      : Failure(status), explanation_(std::move(explanation)) {}

  [[nodiscard]] const std::string& explanation() const noexcept { return explanation_; }

 private:
  std::string explanation_;
};

}  // namespace tal::sql
