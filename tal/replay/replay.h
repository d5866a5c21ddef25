// The engine that plays a recording back.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tal/credentials.h"
#include "tal/engine.h"
#include "tal/recording/lines.h"

namespace tal::replay {

// Opens the recording FILE of "FILE" or "FILE@TIME", the latter at the first moment at or after the
// time. Every account is accepted. Throws Failure kRecordingUnreadable, after a line on standard
// error that says what is wrong.
std::unique_ptr<Engine> open(std::string_view location, const Credentials& credentials);

// Serves the moments of a recording in their order. Each list or counter is served once in each
// moment: a second request for it goes to the next moment, and all requests until then get the same
// moment. Information and version come from the first moment that has them. If a moment failed, a
// request for a part that it lacks throws its status, once.
class ReplayEngine : public Engine {
 public:
  // Begins at the first moment at or after `from`, in microseconds since 1970 UTC, or at the first
  // of all. Throws FileError.
  ReplayEngine(const std::string& path, std::optional<std::int64_t> from);

  Information information() override;
  Version version() override;
  Usage usage() override;
  Communication communication() override;
  std::vector<OpenFile> openFiles() override;
  std::vector<Client> clients() override;
  std::vector<SqlConnection> sqlConnections() override;

 private:
  using Moment = recording::Moment;

  template <typename Section>
  Section take(std::optional<Section> Moment::*section, unsigned ask);
  template <typename Section>
  Section first(std::optional<Section> Moment::*section, std::optional<Section>& kept,
                unsigned ask);
  void advance();

  recording::RecordingReader reader_;
  Moment moment_;
  bool isThere_;        // whether there is a present moment
  unsigned asked_ = 0;  // bits of the requests in the present moment
  std::optional<Information> information_;
  std::optional<Version> version_;
};

}  // namespace tal::replay
