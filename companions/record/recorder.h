// The run of zelk-record: one moment after the other.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "companions/record/options.h"
#include "companions/record/output.h"
#include "companions/shared/engine.h"
#include "companions/shared/settings.h"

namespace companions::record {

class Recorder {
 public:
  Recorder(const Options& options, Settings settings);

  // Records until a stop is requested, all requested moments are recorded, or a replay ends. Throws
  // CallFailure if the first connection fails, and what Output throws.
  void run();

 private:
  using Moment = tal::recording::Moment;

  void recordAt(std::uint64_t tick);
  void collect(Moment& moment);
  void askAll(Moment& moment);
  void lose();
  void write(Moment& moment);
  [[nodiscard]] bool isDone() const;
  void showProgress(const Moment& moment) const;

  const Options options_;
  const Settings settings_;
  const std::uint64_t interval_;  // microseconds
  const std::string run_;
  const EngineLibrary library_;
  std::optional<EngineConnection> engine_;
  Output output_;
  const bool isReplay_;            // a new connection would begin it again
  std::uint64_t startedAt_ = 0;    // steady time
  std::uint64_t sequence_ = 1;     // number of the next moment
  std::uint64_t missed_ = 0;       // moments left out before the next one
  std::uint64_t nextConnect_ = 0;  // steady time of the next attempt to connect
  std::uint64_t pause_ = 0;        // wait before the attempt after that, microseconds
  bool hasEnded_ = false;          // a replay has no further moment
  const bool showsProgress_;
};

}  // namespace companions::record
