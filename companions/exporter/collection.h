// One collection of the data that an engine serves.
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
  std::int16_t status = 0;  // 0 if the section was collected
  double seconds = 0;
  std::uint64_t calls = 0;  // of the engine interface
};

struct Collection {
  tal::recording::Moment moment;  // without the fields of its heading
  std::vector<SectionResult> sections;
  double seconds = 0;
  std::string failure;  // for people, of the first call that failed; empty if no call failed

  // At least one section was collected.
  [[nodiscard]] bool isUp() const noexcept;
};

// Collects from one engine. Keeps its connection between collections, and connects again after a
// loss. Used by one thread at a time.
class Collector {
 public:
  explicit Collector(companions::Settings settings) : settings_(std::move(settings)) {}

  // Never throws for a failure of the engine: the failure is part of the result.
  [[nodiscard]] Collection collect();

  void disconnect() noexcept { connection_.reset(); }

 private:
  Collection collectOnce();

  companions::Settings settings_;
  std::unique_ptr<companions::EngineConnection> connection_;
};

}  // namespace exporter
