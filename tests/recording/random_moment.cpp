#include "tests/recording/random_moment.h"

#include <concepts>
#include <limits>

#include "tal/recording/fields.h"
#include "tal/recording/reader.h"
#include "tal/recording/text.h"
#include "tal/recording/writer.h"

namespace recording_tests {
namespace {

using namespace tal::recording;

bool oneIn(Random& random, unsigned odds) { return random() % odds == 0; }

// Plain words, every byte but NUL, and what could be taken for an escape.
std::string randomText(Random& random) {
  static const std::vector<std::string> kPieces = {"orders",
                                                   "\"",
                                                   "\\",
                                                   "{",
                                                   "}",
                                                   "{x",
                                                   "{x7B}",
                                                   "{xfc}",
                                                   "{n}",
                                                   "\n",
                                                   "\x1b[2J",
                                                   "Grö",
                                                   "\xff",
                                                   "\xe2\x80\xae",
                                                   "\xf0\x9f\x98\x80",
                                                   "\xed\xa0\x80",
                                                   "\xc2\x85",
                                                   " ",
                                                   "\x7f"};
  std::string text;
  for (std::uint64_t piece = random() % 6; piece > 0; --piece) {
    if (oneIn(random, 4)) {
      text += static_cast<char>(random() % 255 + 1);
    } else {
      text += kPieces[random() % kPieces.size()];
    }
  }
  if (oneIn(random, 20)) text.append(random() % 1100, 'x');
  return text;
}

// Fills a field with anything that it can hold, often with a word's code or one of its ends.
class Filler {
 public:
  explicit Filler(Random& random) : random_(random) {}

  template <std::integral Number>
  void operator()(const Key& key, Number& number) const {
    using Limits = std::numeric_limits<Number>;
    if (!key.words.empty() && !oneIn(random_, 4)) {
      number = static_cast<Number>(key.words[random_() % key.words.size()].code);
    } else if (oneIn(random_, 4)) {
      number = oneIn(random_, 2) ? Limits::max() : Limits::min();
    } else {
      number = static_cast<Number>(random_());
    }
  }
  void operator()(const Key& /*key*/, std::string& text) const { text = randomText(random_); }
  void operator()(const Key& /*key*/, tal::Gauge& gauge) const { visitGauge(*this, gauge); }

  template <typename Entry, typename Fill>
  void fillList(std::vector<Entry>& list, const Fill& fill) const {
    list.resize(oneIn(random_, 3) ? 0 : random_() % 5);
    for (Entry& entry : list) fill(entry);
  }

 private:
  Random& random_;
};

// Writes TOML: JSON's strings and numbers are its own.
class ScenarioText {
 public:
  void operator()(const Key& key, std::integral auto number) {
    begin(key);
    text_ += std::to_string(number);
  }
  void operator()(const Key& key, const std::string& text) {
    begin(key);
    appendText(text_, text);
  }
  template <typename Write>
  void braced(const Write& write) {
    text_ += "{ ";
    write();
    text_ += " }";
  }
  template <typename Entry, typename Write>
  void list(const Key& key, const std::vector<Entry>& entries, const Write& write) {
    begin(key);
    text_ += '[';
    for (const Entry& entry : entries) {
      if (&entry != entries.data()) text_ += ", ";
      braced([&] { write(entry); });
    }
    text_ += ']';
  }
  [[nodiscard]] auto visitor() {
    return [this](const Key& key, const auto& field) { (*this)(key, field); };
  }
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  void begin(const Key& key) {
    if (!text_.ends_with("{ ")) text_ += ", ";
    text_.append(key.name).append(" = ");
  }

  std::string text_;
};

// Each entry is there in the refresh of its moment alone.
template <typename Section, typename Write>
void addSection(std::string& out, const char* name, const std::vector<Moment>& moments,
                std::optional<std::vector<Section>> Moment::*list, const Write& write) {
  std::string separator;
  out.append(name).append(" = [");
  for (std::size_t at = 0; at < moments.size(); ++at) {
    for (const Section& entry : *(moments[at].*list)) {
      ScenarioText fields;
      fields.braced([&] {
        fields("from", at + 1);
        fields("until", at + 1);
        write(fields, entry);
      });
      out.append(separator).append(fields.text());
      separator = ",\n";
    }
  }
  out.append("]\n");
}

std::string randomFault(Random& random, std::size_t refreshes) {
  static const std::vector<std::pair<const char*, int>> kFaults = {
      {"TalGetOpenFileName",          7008},
      {"TalGetFileInfo2",             7015},
      {"TalGetFileHandlesData",       7015},
      {"TalGetFileHandleInfo",        7015},
      {"TalGetFileHandleInfo",        7008},
      {"TalGetZorbClientId",          7008},
      {"TalGetZorbClientInfo",        7010},
      {"TalGetZorbClientHandleInfo",  7010},
      {"TalGetZorbClientHandleInfo",  7008},
      {"TalGetSQLConnectionInfo2",    7008},
      {"TalGetZorbUsageEx2",          7106},
      {"TalGetZorbCommStatEx",        -5  },
      {"TalGetZorbClientHandlesData", 7010},
      {"TalGetOpenFilesData",         7107}
  };
  const auto& [call, status] = kFaults[random() % kFaults.size()];
  return std::string("[[fault]]\ncall = \"") + call + "\"\nstatus = " + std::to_string(status) +
         "\nrefresh = " + std::to_string(random() % refreshes + 1) +
         "\nat = " + std::to_string(random() % 3 + 1) + "\n";
}

}  // namespace

Moment randomMoment(Random& random) {
  const Filler fill(random);
  Moment moment;
  visitInformation(fill, moment.engine.emplace());
  visitVersion(fill, moment.version.emplace());
  fill.fillList(moment.files.emplace(), [&](tal::OpenFile& file) {
    visitFile(fill, file);
    fill.fillList(file.handles, [&](tal::FileHandle& each) { visitFileHandle(fill, each); });
  });
  fill.fillList(moment.clients.emplace(), [&](tal::Client& client) {
    visitClient(fill, client);
    fill.fillList(client.handles, [&](tal::ClientHandle& each) { visitClientHandle(fill, each); });
  });
  fill.fillList(moment.sqlConnections.emplace(),
                [&](tal::SqlConnection& each) { visitSqlConnection(fill, each); });
  visitUsage(fill, moment.usage.emplace());
  visitCommunication(fill, moment.communication.emplace());
  fill.fillList(moment.communication->protocols,
                [&](tal::Protocol& each) { visitProtocol(fill, each); });
  return moment;
}

std::string scenarioOf(const std::vector<Moment>& moments, Random& random) {
  std::string text;
  addSection(text, "file", moments, &Moment::files, [](ScenarioText& out, const auto& file) {
    visitFile(out.visitor(), file);
    out.list(kHandleKey, file.handles,
             [&](const auto& handle) { visitFileHandle(out.visitor(), handle); });
  });
  addSection(text, "client", moments, &Moment::clients, [](ScenarioText& out, const auto& client) {
    visitClient(out.visitor(), client);
    out.list(kHandleKey, client.handles,
             [&](const auto& handle) { visitClientHandle(out.visitor(), handle); });
  });
  addSection(text, "sql_connection", moments, &Moment::sqlConnections,
             [](ScenarioText& out, const auto& each) { visitSqlConnection(out.visitor(), each); });
  const auto step = [&](std::uint64_t values) {
    return "{ start = " + std::to_string(values % 1'000'000) +
           ", step = " + std::to_string(random() % 4'000'000'000) + " }";
  };
  text += "[version]\nmajor = " + std::to_string(moments[0].version->major) + "\n[usage]\n";
  text += "up_time_seconds = " + step(moments[0].usage->upTimeSeconds) + "\n";
  text += "locks = { current = " + step(moments[0].usage->locks.current) + " }\n";
  text += "[communication]\nrequests = " + step(moments[0].communication->requests) + "\n";
  text += "[[communication.protocol]]\ncode = 12\nrequests = " + step(random()) + "\n";
  if (random() % 3 == 0) text += randomFault(random, moments.size());
  return text;
}

std::string sectionsOf(const Moment& moment) {
  Moment sections = moment;
  sections.heading = {};
  std::string line;
  appendLine(line, sections);
  return line;
}

Moment read(std::string line) {
  const std::size_t length = line.ends_with('\n') ? line.size() - 1 : line.size();
  line.append(kPadding, 'x');
  return MomentReader().read(std::string_view(line).substr(0, length));
}

}  // namespace recording_tests
