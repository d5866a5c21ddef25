#include "companions/exporter/target.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <utility>

namespace exporter {

Target::Target(std::string name, companions::Settings settings, std::shared_ptr<std::mutex> turn)
    : name_(std::move(name)),
      turn_(std::move(turn)),
      collector_(std::move(settings)),
      thread_([this] { work(); }) {}

Target::~Target() {
  requestStop();
  thread_.join();
}

std::shared_ptr<const Collection> Target::collect(Clock::time_point deadline) {
  std::unique_lock lock(mutex_);
  // If nobody waits for a collection any more, it hangs, and its data is old.
  const bool shares = finished_ < begun_ && Clock::now() < expires_;
  const std::uint64_t wanted = shares ? begun_ : begun_ + 1;
  if (!shares) {
    asked_ = wanted;
    nextExpires_ = std::max(nextExpires_, deadline);
    changed_.notify_all();
  }
  ++waiting_;
  changed_.wait_until(lock, deadline, [&] { return stops_ || finished_ >= wanted; });
  --waiting_;
  std::shared_ptr<const Collection> collection = finished_ >= wanted ? last_ : nullptr;
  if (waiting_ == 0) last_ = nullptr;
  return collection;
}

std::optional<Outline> Target::outline() const {
  const std::lock_guard lock(mutex_);
  return outline_;
}

void Target::requestStop() {
  const std::lock_guard lock(mutex_);
  stops_ = true;
  changed_.notify_all();
}

bool Target::hasStopped(Clock::time_point deadline) {
  std::unique_lock lock(mutex_);
  return changed_.wait_until(lock, deadline, [&] { return stopped_; });
}

void Target::work() {
  while (waitForWork()) finish(collectInTurn());
  {
    const auto turn = takeTurn();
    collector_.disconnect();
  }
  const std::lock_guard lock(mutex_);
  stopped_ = true;
  changed_.notify_all();
}

bool Target::waitForWork() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return stops_ || asked_ > begun_; });
  if (stops_) return false;
  begun_ = asked_;
  expires_ = std::exchange(nextExpires_, Clock::time_point());
  return true;
}

std::unique_lock<std::mutex> Target::takeTurn() const {
  return turn_ ? std::unique_lock(*turn_) : std::unique_lock<std::mutex>();
}

Collection Target::collectInTurn() {
  try {
    const auto turn = takeTurn();
    return collector_.collect();
  } catch (const std::exception& failure) {
    Collection nothing;
    nothing.failure = failure.what();
    return nothing;
  }
}

void Target::finish(Collection collection) {
  const std::lock_guard lock(mutex_);
  note(collection);
  if (waiting_ > 0) last_ = std::make_shared<const Collection>(std::move(collection));
  finished_ = begun_;
  changed_.notify_all();
}

void Target::note(const Collection& collection) {
  const bool isFirst = !outline_;
  Outline outline = {collection.isUp(), std::time(nullptr), collection.failure,
                     collection.moment.usage, std::nullopt};
  if (const auto& files = collection.moment.files) outline.openFiles = files->size();
  const bool isSame = !isFirst && outline_->isUp == outline.isUp;
  if (isSame) outline.since = outline_->since;
  outline_ = std::move(outline);
  if (isSame) return;
  if (!outline_->isUp) {
    std::fprintf(stderr, "zelk-exporter: %s: %s\n", name_.c_str(), collection.failure.c_str());
  } else if (!isFirst) {
    std::fprintf(stderr, "zelk-exporter: %s: collected again\n", name_.c_str());
  }
}

}  // namespace exporter
