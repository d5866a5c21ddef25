// One collection of what an engine serves.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "companions/shared/engine.h"
#include "companions/shared/settings.h"
#include "tal/recording/moment.h"

namespace exporter {

using Clock = std::chrono::steady_clock;

struct SectionResult {
  const char* name;
  std::int16_t status = 0;  // 0 where the section was collected
  double seconds = 0;
};

struct Collection {
  tal::recording::Moment moment;  // without its heading
  std::vector<SectionResult> sections;
  double seconds = 0;
  std::string failure;  // of the first call that failed, for people; empty where none did

  // At least one section was collected.
  [[nodiscard]] bool isUp() const noexcept;
};

// Collects from one engine over a connection that is kept from one collection to the next, and made
// again when it is lost. Used by one thread at a time.
class Collector {
 public:
  explicit Collector(companions::Settings settings) : settings_(std::move(settings)) {}

  // Never throws for what the engine does: a failure is part of the result.
  [[nodiscard]] Collection collect();

  void disconnect() noexcept { connection_.reset(); }

 private:
  Collection collectOnce();

  companions::Settings settings_;
  std::unique_ptr<companions::EngineConnection> connection_;
};

}  // namespace exporter
