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

  // Records until it is asked to stop, the moments asked for are there, or a replay ends. Throws
  // CallFailure when the first connection fails, and what Output throws.
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
  std::uint64_t startedAt_ = 0;    // steady time
  std::uint64_t sequence_ = 1;     // of the next moment
  std::uint64_t missed_ = 0;       // before the next moment
  std::uint64_t nextConnect_ = 0;  // steady time before which no connection is tried
  std::uint64_t pause_ = 0;        // before the connection after that, microseconds
  bool hasEnded_ = false;          // a replay has no further moment
  const bool showsProgress_;
};

}  // namespace companions::record
