// From what was collected of an engine to metrics.
#pragma once

#include <cstddef>

#include "companions/exporter/collection.h"
#include "companions/exporter/metrics.h"

namespace exporter {

// Adds the scrape and every section that was collected; of the files, the `fileCount` that most
// handles wait for by name.
void addCollection(Metrics& metrics, const Collection& collection, std::size_t fileCount);

// Adds a scrape that came to its deadline.
void addMissed(Metrics& metrics, double seconds);

}  // namespace exporter
