#include "companions/record/recorder.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <utility>

#include "companions/record/clock.h"

namespace companions::record {
namespace {

constexpr std::uint64_t kSecond = 1'000'000;  // microseconds
constexpr std::uint64_t kDefaultInterval = 10 * kSecond;
constexpr std::uint64_t kLongestPause = 30 * kSecond;

// A replay has no further moment (status 7127 of our engine library).
constexpr std::int16_t kRecordingEnds = 7127;

std::uint64_t intervalOf(const Options& options, const Settings& settings) {
  if (options.interval) return *options.interval;
  const auto rate = static_cast<std::uint64_t>(settings.refreshRate);
  return rate == 0 ? kDefaultInterval : rate * kSecond;
}

// A random UUID (version 4).
std::string newRun() {
  std::random_device random;
  const auto word = [&random] { return static_cast<unsigned>(random()); };
  char text[64];
  std::snprintf(text, sizeof text, "%08x-%04x-4%03x-%04x-%08x%04x", word(), word() & 0xffffU,
                word() & 0xfffU, (word() & 0x3fffU) | 0x8000U, word(), word() & 0xffffU);
  return text;
}

}  // namespace

Recorder::Recorder(const Options& options, Settings settings)
    : options_(options),
      settings_(std::move(settings)),
      interval_(intervalOf(options_, settings_)),
      run_(newRun()),
      output_(options_, settings_.login.server, options_.sync && interval_ >= kSecond),
      isReplay_(settings_.login.server.starts_with("replay:")),
      showsProgress_(isatty(STDERR_FILENO) == 1) {}

void Recorder::run() {
  if (!options_.wait) engine_.emplace(settings_.login);
  output_.open(wallTime());
  startedAt_ = steadyTime();
  std::uint64_t tick = startedAt_;
  while (!stopRequested()) {
    if (takeReopenRequest()) output_.reopen();
    if (steadyTime() < tick) {
      waitUntil(tick);
      continue;
    }
    recordAt(tick);
    if (isDone()) break;
    tick += interval_;
    const std::uint64_t now = steadyTime();
    if (now <= tick) continue;
    // Moments whose time has passed are left out and not recorded later.
    const std::uint64_t late = (now - tick + interval_ - 1) / interval_;
    missed_ += late;
    tick += late * interval_;
  }
  if (showsProgress_) std::fputc('\n', stderr);
}

void Recorder::recordAt(std::uint64_t tick) {
  if (!engine_ && tick < nextConnect_) {
    ++missed_;
    return;
  }
  Moment moment;
  const std::uint64_t begin = steadyTime();
  moment.heading.time = wallTime();
  collect(moment);
  if (hasEnded_) return;
  moment.heading.elapsed = begin - startedAt_;
  moment.heading.took = steadyTime() - begin;
  write(moment);
}

void Recorder::collect(Moment& moment) {
  try {
    if (!engine_) engine_.emplace(settings_.login);
    askAll(moment);
    pause_ = 0;
  } catch (const CallFailure& failure) {
    hasEnded_ = failure.status() == kRecordingEnds;
    moment.error = {failure.call(), failure.status(), failure.text()};
    if (!isReplay_ || !engine_) lose();
  }
}

void Recorder::askAll(Moment& moment) {
  const Sections& sections = settings_.sections;
  moment.engine = engine_->information();
  moment.version = engine_->version();
  if (sections.files) moment.files = engine_->files();
  if (sections.clients) moment.clients = engine_->clients();
  if (sections.sqlConnections) moment.sqlConnections = engine_->sqlConnections();
  if (sections.usage) moment.usage = engine_->usage();
  if (sections.communication) moment.communication = engine_->communication();
}

// The next attempt to connect comes after 1, 2, 4, ... 30 seconds.
void Recorder::lose() {
  engine_.reset();
  pause_ = std::clamp(2 * pause_, kSecond, kLongestPause);
  nextConnect_ = steadyTime() + pause_;
}

void Recorder::write(Moment& moment) {
  moment.heading.run = run_;
  moment.heading.sequence = sequence_;
  moment.heading.zone = zoneAt(moment.heading.time);
  moment.heading.interval = interval_;
  moment.heading.missed = missed_;
  moment.heading.server = settings_.login.server;
  if (output_.write(moment)) {
    ++sequence_;
    missed_ = 0;
  } else {
    ++missed_;
  }
  if (showsProgress_) showProgress(moment);
}

bool Recorder::isDone() const {
  return hasEnded_ || (options_.count > 0 && sequence_ > options_.count);
}

void Recorder::showProgress(const Moment& moment) const {
  const std::string status = moment.error ? std::to_string(moment.error->status) : "ok";
  std::fprintf(stderr, "\r%llu moments, %llu bytes, last status: %s\x1b[K",
               static_cast<unsigned long long>(sequence_ - 1),
               static_cast<unsigned long long>(output_.bytes()), status.c_str());
}

}  // namespace companions::record
