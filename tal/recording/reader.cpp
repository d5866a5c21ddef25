#include "tal/recording/reader.h"

#include <simdjson.h>

#include <algorithm>
#include <concepts>
#include <limits>
#include <string>
#include <vector>

#include "tal/recording/fields.h"
#include "tal/recording/text.h"
#include "tal/recording/writer.h"
#include "tal/text.h"

namespace tal::recording {
namespace {

namespace dom = simdjson::dom;

static_assert(kPadding >= simdjson::SIMDJSON_PADDING);

constexpr std::size_t kReasonLimit = 200;

[[noreturn]] void damaged(std::string reason) {
  fitText(reason, kReasonLimit);
  throw Damaged(reason);
}

[[noreturn]] void wrongValue(const Key& key) {
  damaged("the value of \"" + std::string(key.name) + "\" is of the wrong kind");
}

// One object, key by key. Finding a key is fast if the keys come in the order in which they are
// requested.
class ObjectReader {
 public:
  ObjectReader(dom::element element, const Key& key)
      : object_(objectOf(element, key)), next_(object_.begin()) {}

  [[nodiscard]] auto visitor() {
    return [this](const Key& key, auto& field) { read(key, field); };
  }

  template <std::integral Number>
  void read(const Key& key, Number& number) {
    const dom::element value = take(key);
    std::string_view text;
    if (!key.words.empty() && value.get(text) == simdjson::SUCCESS) {
      const auto word = std::ranges::find(key.words, text, &Word::word);
      if (word == key.words.end()) wrongValue(key);
      number = static_cast<Number>(word->code);
    } else if constexpr (std::unsigned_integral<Number>) {
      number = inRange<Number, std::uint64_t>(key, value);
    } else {
      number = inRange<Number, std::int64_t>(key, value);
    }
  }

  void read(const Key& key, std::string& text) { text = textOf(take<std::string_view>(key)); }

  void read(const Key& key, Gauge& gauge) {
    ObjectReader fields(take(key), key);
    visitGauge(fields.visitor(), gauge);
    fields.finish();
  }

  // Reads the entries of a list of objects.
  template <typename Entry, typename ReadFields>
  void readList(const Key& key, std::vector<Entry>& entries, const ReadFields& readFields) {
    const auto list = take<dom::array>(key);
    entries.reserve(list.size());
    for (const dom::element element : list) {
      ObjectReader fields(element, key);
      readFields(fields, entries.emplace_back());
      fields.finish();
    }
  }

  template <typename Value>
  Value take(const Key& key) {
    Value value;
    if (take(key).get(value) != simdjson::SUCCESS) wrongValue(key);
    return value;
  }

  dom::element take(const Key& key) {
    const dom::element* const value = find(key);
    if (value == nullptr) damaged("the key \"" + std::string(key.name) + "\" is missing");
    return *value;
  }

  [[nodiscard]] bool has(const Key& key) const {
    return (next_ != object_.end() && next_.key() == key.name) ||
           object_.at_key(key.name).error() == simdjson::SUCCESS;
  }

  // Refuses an object that has a key twice. Call it after all keys were requested.
  void finish() const {
    if (found_ == object_.size()) return;
    std::vector<std::string_view> keys;
    for (const dom::key_value_pair each : object_) keys.push_back(each.key);
    std::ranges::sort(keys);
    const auto twice = std::ranges::adjacent_find(keys);
    if (twice != keys.end()) damaged("the key \"" + std::string(*twice) + "\" is given twice");
  }

 private:
  static dom::object objectOf(dom::element element, const Key& key) {
    dom::object object;
    if (element.get(object) != simdjson::SUCCESS) wrongValue(key);
    return object;
  }

  const dom::element* find(const Key& key) {
    if (next_ != object_.end() && next_.key() == key.name) {
      value_ = next_.value();
      ++next_;
    } else if (object_.at_key(key.name).get(value_) != simdjson::SUCCESS) {
      return nullptr;
    }
    ++found_;
    return &value_;
  }

  template <typename Number, typename Wide>
  static Number inRange(const Key& key, dom::element value) {
    Wide wide = 0;
    if (value.get(wide) != simdjson::SUCCESS || !std::in_range<Number>(wide)) wrongValue(key);
    return static_cast<Number>(wide);
  }

  dom::object object_;
  dom::object::iterator next_;
  dom::element value_;
  std::size_t found_ = 0;
};

template <typename Parse>
auto parsed(ObjectReader& fields, const Key& key, const Parse& parse) {
  const auto value = parse(fields.take<std::string_view>(key));
  if (!value) wrongValue(key);
  return *value;
}

void readHeading(ObjectReader& root, Heading& heading) {
  std::int64_t format = 0;
  root.read("zelk_recording", format);
  if (format != kFormatVersion) {
    damaged("the format's version is " + std::to_string(format) + ", which is not known here");
  }
  root.read("run", heading.run);
  root.read("sequence", heading.sequence);
  heading.time = parsed(root, "time", timeOf);
  heading.zone = parsed(root, "zone", zoneOf);
  root.read("elapsed_us", heading.elapsed);
  root.read("interval_us", heading.interval);
  root.read("missed", heading.missed);
  root.read("took_us", heading.took);
  root.read("server", heading.server);
}

// Reads an object into a section that may be absent.
template <typename Section, typename ReadFields>
void readSection(ObjectReader& root, const Key& key, std::optional<Section>& section,
                 const ReadFields& readFields) {
  if (!root.has(key)) return;
  ObjectReader fields(root.take(key), key);
  readFields(fields, section.emplace());
  fields.finish();
}

template <typename Entry, typename ReadFields>
void readListSection(ObjectReader& root, const Key& key, std::optional<std::vector<Entry>>& section,
                     const ReadFields& readFields) {
  if (root.has(key)) root.readList(key, section.emplace(), readFields);
}

void readFile(ObjectReader& fields, OpenFile& file) {
  visitFile(fields.visitor(), file);
  fields.readList(kHandleKey, file.handles, [](ObjectReader& entry, FileHandle& handle) {
    visitFileHandle(entry.visitor(), handle);
  });
}

void readClient(ObjectReader& fields, Client& client) {
  visitClient(fields.visitor(), client);
  fields.readList(kHandleKey, client.handles, [](ObjectReader& entry, ClientHandle& handle) {
    visitClientHandle(entry.visitor(), handle);
  });
}

void readCommunication(ObjectReader& fields, Communication& communication) {
  visitCommunication(fields.visitor(), communication);
  fields.readList(
      kProtocolKey, communication.protocols,
      [](ObjectReader& entry, Protocol& protocol) { visitProtocol(entry.visitor(), protocol); });
}

void readError(ObjectReader& fields, Error& error) {
  fields.read("call", error.call);
  fields.read("status", error.status);
  if (error.status == 0) wrongValue("status");
  fields.read("text", error.text);
}

Moment readMoment(dom::element element) {
  ObjectReader root(element, "moment");
  Moment moment;
  readHeading(root, moment.heading);
  readSection(root, kEngineKey, moment.engine, [](ObjectReader& fields, Information& values) {
    visitInformation(fields.visitor(), values);
  });
  readSection(root, kVersionKey, moment.version, [](ObjectReader& fields, Version& values) {
    visitVersion(fields.visitor(), values);
  });
  readListSection(root, kFileKey, moment.files, readFile);
  readListSection(root, kClientKey, moment.clients, readClient);
  readListSection(root, kSqlConnectionKey, moment.sqlConnections,
                  [](ObjectReader& fields, SqlConnection& connection) {
                    visitSqlConnection(fields.visitor(), connection);
                  });
  readSection(root, kUsageKey, moment.usage,
              [](ObjectReader& fields, Usage& values) { visitUsage(fields.visitor(), values); });
  readSection(root, kCommunicationKey, moment.communication, readCommunication);
  readSection(root, "error", moment.error, readError);
  root.finish();
  return moment;
}

}  // namespace

struct MomentReader::Parser {
  dom::parser parser;
};

MomentReader::MomentReader() : parser_(std::make_unique<Parser>()) {}
MomentReader::MomentReader(MomentReader&&) noexcept = default;
MomentReader& MomentReader::operator=(MomentReader&&) noexcept = default;
MomentReader::~MomentReader() = default;

Moment MomentReader::read(std::string_view line) {
  if (line.size() > kLineLimit) damaged("the line is longer than 1 GiB");
  dom::element element;
  constexpr bool kCopy = false;  // the line has its padding
  const simdjson::error_code error =
      parser_->parser.parse(line.data(), line.size(), kCopy).get(element);
  if (error == simdjson::MEMALLOC) throw std::bad_alloc();
  if (error != simdjson::SUCCESS) damaged(simdjson::error_message(error));
  return readMoment(element);
}

}  // namespace tal::recording
