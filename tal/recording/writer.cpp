#include "tal/recording/writer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <concepts>
#include <string_view>

#include "tal/recording/fields.h"
#include "tal/recording/text.h"
#include "tal/text.h"

namespace tal::recording {
namespace {

// The other keys before the first section, each at its longest, take less than the difference to
// kHeadingLimit.
constexpr std::size_t kServerLimit = 512;

constexpr std::size_t kPart = std::size_t{1} << 18U;  // bytes in one part

using Take = std::function<void(std::string_view part)>;

class Writer {
 public:
  explicit Writer(const Take& take) : take_(take) {}

  [[nodiscard]] auto visitor() {
    return [this](const Key& key, const auto& field) { write(key, field); };
  }

  template <std::integral Number>
  void write(const Key& key, Number number) {
    writeKey(key);
    const auto word = std::ranges::find(key.words, std::int64_t(number), &Word::code);
    if (word != key.words.end()) {
      out_.append(1, '"').append(word->word) += '"';
    } else {
      appendNumber(number);
    }
  }

  void write(const Key& key, const std::string& text) {
    writeKey(key);
    appendText(out_, text);
  }

  void write(const Key& key, const Gauge& gauge) {
    writeObject(key, [&] { visitGauge(visitor(), gauge); });
  }

  template <typename WriteFields>
  void writeObject(const Key& key, const WriteFields& writeFields) {
    writeKey(key);
    braced(writeFields);
  }

  template <typename Entry, typename WriteFields>
  void writeList(const Key& key, const std::vector<Entry>& entries,
                 const WriteFields& writeFields) {
    writeKey(key);
    out_ += '[';
    for (const Entry& entry : entries) {
      if (&entry != entries.data()) out_ += ',';
      braced([&] { writeFields(entry); });
      if (out_.size() > kPart) handOver();
    }
    out_ += ']';
  }

  void end() {
    out_ += '\n';
    take_(out_);
  }

  template <typename WriteFields>
  void braced(const WriteFields& writeFields) {
    out_ += '{';
    writeFields();
    out_ += '}';
  }

 private:
  void writeKey(const Key& key) {
    if (out_.back() != '{') out_ += ',';
    out_.append(1, '"').append(key.name).append("\":");
  }

  template <typename Number>
  void appendNumber(Number number) {
    std::array<char, 24> digits;
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    out_.append(digits.data(), end);
  }

  // Writes all but the last character, which decides whether a comma follows.
  void handOver() {
    take_(std::string_view(out_).substr(0, out_.size() - 1));
    out_.erase(0, out_.size() - 1);
  }

  const Take& take_;
  std::string out_;
};

void writeHeading(Writer& writer, const Heading& heading) {
  writer.write("zelk_recording", kFormatVersion);
  writer.write("run", heading.run);
  writer.write("sequence", heading.sequence);
  writer.write("time", timeText(heading.time));
  writer.write("zone", zoneText(heading.zone));
  writer.write("elapsed_us", heading.elapsed);
  writer.write("interval_us", heading.interval);
  writer.write("missed", heading.missed);
  writer.write("took_us", heading.took);
  writer.write("server", recordableServer(heading.server));
}

void writeFiles(Writer& writer, const std::vector<OpenFile>& files) {
  writer.writeList(kFileKey, files, [&](const OpenFile& file) {
    visitFile(writer.visitor(), file);
    writer.writeList(kHandleKey, file.handles,
                     [&](const FileHandle& handle) { visitFileHandle(writer.visitor(), handle); });
  });
}

void writeClients(Writer& writer, const std::vector<Client>& clients) {
  writer.writeList(kClientKey, clients, [&](const Client& client) {
    visitClient(writer.visitor(), client);
    writer.writeList(kHandleKey, client.handles, [&](const ClientHandle& handle) {
      visitClientHandle(writer.visitor(), handle);
    });
  });
}

void writeCommunication(Writer& writer, const Communication& communication) {
  writer.writeObject(kCommunicationKey, [&] {
    visitCommunication(writer.visitor(), communication);
    writer.writeList(kProtocolKey, communication.protocols,
                     [&](const Protocol& protocol) { visitProtocol(writer.visitor(), protocol); });
  });
}

void writeError(Writer& writer, const Error& error) {
  writer.writeObject("error", [&] {
    writer.write("call", error.call);
    writer.write("status", error.status);
    writer.write("text", error.text);
  });
}

void writeMoment(Writer& writer, const Moment& moment) {
  writeHeading(writer, moment.heading);
  const auto visit = writer.visitor();
  if (moment.engine) {
    writer.writeObject(kEngineKey, [&] { visitInformation(visit, *moment.engine); });
  }
  if (moment.version) {
    writer.writeObject(kVersionKey, [&] { visitVersion(visit, *moment.version); });
  }
  if (moment.files) writeFiles(writer, *moment.files);
  if (moment.clients) writeClients(writer, *moment.clients);
  if (moment.sqlConnections) {
    writer.writeList(kSqlConnectionKey, *moment.sqlConnections,
                     [&](const SqlConnection& each) { visitSqlConnection(visit, each); });
  }
  if (moment.usage) writer.writeObject(kUsageKey, [&] { visitUsage(visit, *moment.usage); });
  if (moment.communication) writeCommunication(writer, *moment.communication);
  if (moment.error) writeError(writer, *moment.error);
}

}  // namespace

std::string recordableServer(std::string_view server) {
  std::string recorded;
  appendText(recorded, server);
  while (recorded.size() > kServerLimit) {
    server.remove_suffix(1);
    recorded.clear();
    appendText(recorded, server);
  }
  return std::string(server);
}

void writeLine(const Moment& moment, const Take& take) {
  Writer writer(take);
  writer.braced([&] { writeMoment(writer, moment); });
  writer.end();
}

void appendLine(std::string& out, const Moment& moment) {
  writeLine(moment, [&out](std::string_view part) { out += part; });
}

}  // namespace tal::recording
