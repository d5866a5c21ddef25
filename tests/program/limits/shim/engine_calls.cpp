// Hands each call on to the engine library behind this one and counts it.
#include <atomic>
#include <cstdint>

#include "tests/program/limits/shim/counts.h"
#include "tests/support/fake_engine/call.h"

namespace {

using enum fake_engine::Kind;

// What the call begins or ends, if anything. The handles of a file or client are part of the
// snapshot of the list.
std::atomic<std::int64_t>* countOf(const fake_engine::Call& call) {
  switch (call.kind) {
    case kStart:
    case kStop:
      return &limits::counts().starts;
    case kConnect:
    case kDisconnect:
      return &limits::counts().connections;
    case kTake:
      return call.texts[0] == nullptr && call.client == nullptr ? &limits::counts().snapshots
                                                                : nullptr;
    case kRelease:
      return &limits::counts().snapshots;
    default:
      return nullptr;
  }
}

bool isEnd(fake_engine::Kind kind) {
  return kind == kStop || kind == kDisconnect || kind == kRelease;
}

}  // namespace

std::int16_t fake_engine::serve(const Call& call, const Next& next) {
  ++limits::counts().engineCalls;
  const std::int16_t status = next();
  if (auto* const count = countOf(call)) {
    if (isEnd(call.kind)) {
      --*count;
    } else if (status == 0) {
      ++*count;
    }
  }
  return status;
}
