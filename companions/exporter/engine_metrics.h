// Turns a collection into metrics.
#pragma once

#include <cstddef>

#include "companions/exporter/collection.h"
#include "companions/exporter/metrics.h"

namespace exporter {

// Adds the scrape and every section that was collected. Adds by name the `fileCount` files that
// most handles wait for.
void addCollection(Metrics& metrics, const Collection& collection, std::size_t fileCount);

// Adds a scrape that reached its deadline.
void addMissed(Metrics& metrics, double seconds);

}  // namespace exporter
