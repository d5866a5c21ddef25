#include "tal/replay/replay.h"

#include <cstdio>
#include <utility>

#include "tal/recording/text.h"
#include "tal/text.h"

namespace tal::replay {
namespace {

// The possible requests, as bits.
enum Ask : unsigned {
  kInformation = 1,
  kVersion = 2,
  kFiles = 4,
  kClients = 8,
  kSqlConnections = 16,
  kUsage = 32,
  kCommunication = 64,
};

constexpr std::size_t kComplaintLimit = 4000;

// A status cannot name the file or line.
void complain(const std::string& text) {
  std::string line = text;
  fitText(line, kComplaintLimit);
  std::fprintf(stderr, "libtal: %s\n", line.c_str());
}

struct Place {
  std::string path;
  std::optional<std::int64_t> from;
};

// A name may contain "@": only an "@" before a time separates.
Place placeOf(std::string_view location) {
  const std::size_t at = location.rfind('@');
  if (at != std::string_view::npos) {
    if (const auto from = recording::timeOf(location.substr(at + 1))) {
      return {std::string(location.substr(0, at)), from};
    }
  }
  return {std::string(location), std::nullopt};
}

}  // namespace

std::unique_ptr<Engine> open(std::string_view location, const Credentials& /*credentials*/) {
  const Place place = placeOf(location);
  try {
    return std::make_unique<ReplayEngine>(place.path, place.from);
  } catch (const FileError& error) {
    complain(place.path + ": " + error.what());
    throw Failure(Status::kRecordingUnreadable);
  }
}

ReplayEngine::ReplayEngine(const std::string& path, std::optional<std::int64_t> from)
    : reader_(path, complain),
      isThere_(from ? reader_.nextFrom(*from, moment_) : reader_.next(moment_)) {}

Information ReplayEngine::information() {
  return first(&Moment::engine, information_, kInformation);
}

Version ReplayEngine::version() { return first(&Moment::version, version_, kVersion); }

Usage ReplayEngine::usage() { return take(&Moment::usage, kUsage); }

Communication ReplayEngine::communication() { return take(&Moment::communication, kCommunication); }

std::vector<OpenFile> ReplayEngine::openFiles() { return take(&Moment::files, kFiles); }

std::vector<Client> ReplayEngine::clients() { return take(&Moment::clients, kClients); }

std::vector<SqlConnection> ReplayEngine::sqlConnections() {
  return take(&Moment::sqlConnections, kSqlConnections);
}

template <typename Section>
Section ReplayEngine::take(std::optional<Section> Moment::*section, unsigned ask) {
  if (!isThere_ || (asked_ & ask) != 0) advance();
  if (!isThere_) throw Failure(Status::kRecordingEnds);
  asked_ |= ask;
  // Nobody requests it again: a second request gets another moment.
  if (auto& value = moment_.*section) return std::move(*value);
  if (moment_.error) throw Failure(static_cast<Status>(moment_.error->status));
  throw Failure(Status::kNotRecorded);
}

template <typename Section>
Section ReplayEngine::first(std::optional<Section> Moment::*section, std::optional<Section>& kept,
                            unsigned ask) {
  const bool isLacking = isThere_ && moment_.error && !(moment_.*section);
  if (isThere_ && kept && !isLacking) return *kept;
  Section answer = take(section, ask);
  if (!kept) kept = std::move(answer);
  return *kept;
}

void ReplayEngine::advance() {
  isThere_ = reader_.next(moment_);
  asked_ = 0;
}

}  // namespace tal::replay
