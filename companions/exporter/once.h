// The metrics of one moment, for a collector of text files.
#pragma once

#include "companions/exporter/options.h"
#include "companions/exporter/pages.h"

namespace exporter {

// Writes the metrics of the one target in the text format. A file is replaced by a rename, so that
// nobody reads half of it. Throws companions::WrongCommandLine unless there is exactly one target,
// and std::exception if it cannot write.
void writeOnce(const Options& options, const Targets& targets);

}  // namespace exporter
