#include "companions/exporter/collection.h"

#include <algorithm>
#include <functional>

namespace exporter {
namespace {

using companions::CallFailure;
using companions::EngineConnection;

double secondsSince(Clock::time_point begin) {
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

// A section and the function that collects it.
struct Section {
  const char* name;
  bool companions::Sections::*wanted;
  void (*collect)(const EngineConnection& from, tal::recording::Moment& into);
};

constexpr Section kSections[] = {
    {"files",           &companions::Sections::files,
     [](const EngineConnection& from, tal::recording::Moment& into) { into.files = from.files(); }},
    {"clients",         &companions::Sections::clients,
     [](const EngineConnection& from, tal::recording::Moment& into) {
       into.clients = from.clients();
     }                                                       },
    {"sql_connections", &companions::Sections::sqlConnections,
     [](const EngineConnection& from, tal::recording::Moment& into) {
       into.sqlConnections = from.sqlConnections();
     }                                                       },
    {"usage",           &companions::Sections::usage,
     [](const EngineConnection& from, tal::recording::Moment& into) { into.usage = from.usage(); }},
    {"communication",   &companions::Sections::communication,
     [](const EngineConnection& from, tal::recording::Moment& into) {
       into.communication = from.communication();
     }                                                       },
};

void noteFailure(Collection& collection, const CallFailure& failure) {
  if (!collection.failure.empty()) return;
  collection.failure =
      std::string(failure.call()) + ": " + std::to_string(failure.status()) + ": " + failure.text();
}

// The status of `action`, 0 if it does not fail.
std::int16_t statusOf(Collection& collection, const std::function<void()>& action) {
  try {
    action();
    return 0;
  } catch (const CallFailure& failure) {
    noteFailure(collection, failure);
    return failure.status();
  }
}

}  // namespace

bool Collection::isUp() const noexcept {
  return std::ranges::any_of(sections, [](const SectionResult& each) { return each.status == 0; });
}

Collection Collector::collect() {
  const Clock::time_point begin = Clock::now();
  const bool isKept = connection_ != nullptr;
  Collection collection = collectOnce();
  // The engine may have been restarted since the last collection.
  if (isKept && !collection.isUp()) collection = collectOnce();
  collection.seconds = secondsSince(begin);
  return collection;
}

Collection Collector::collectOnce() {
  Collection collection;
  tal::recording::Moment& moment = collection.moment;
  const std::int16_t unconnected = statusOf(collection, [&] {
    if (!connection_) connection_ = std::make_unique<EngineConnection>(settings_.login);
    moment.engine = connection_->information();
    moment.version = connection_->version();
  });
  for (const Section& section : kSections) {
    if (!(settings_.sections.*section.wanted)) continue;
    const Clock::time_point begin = Clock::now();
    const std::uint64_t calls = companions::callsOfThisThread();
    std::int16_t status = unconnected;
    if (unconnected == 0) {
      status = statusOf(collection, [&] { section.collect(*connection_, moment); });
    }
    collection.sections.push_back(
        {section.name, status, secondsSince(begin), companions::callsOfThisThread() - calls});
  }
  // A lost connection fails every further call.
  if (collection.sections.empty() || collection.sections.back().status != 0) connection_.reset();
  return collection;
}

}  // namespace exporter
