// Metrics of the exporter's own process.
#pragma once

#include "companions/exporter/metrics.h"

namespace exporter {

void addProcess(Metrics& metrics);

}  // namespace exporter
