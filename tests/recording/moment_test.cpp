#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tal/recording/fields.h"
#include "tal/recording/reader.h"
#include "tal/recording/text.h"
#include "tal/recording/writer.h"
#include "tests/recording/random_moment.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace recording_tests {
namespace {

using namespace tal::recording;
using nlohmann::json;

Heading fullHeading() {
  constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
  return {"01234567-89ab-4cde-8f01-23456789abcd",
          kMost,
          1'763'752'475'123'456,
          -90,
          kMost,
          kMost,
          kMost,
          kMost,
          "sim:demo"};
}

std::string lineOf(const Moment& moment) {
  std::string line;
  appendLine(line, moment);
  return line;
}

std::string asText(std::string_view text) {
  std::string out;
  appendText(out, text);
  return out;
}

TEST(RecordedText, KeepsEveryByte) {
  struct Case {
    std::string text;
    const char* recorded;
  };
  const std::vector<Case> cases = {
      {"",                         R"("")"                       },
      {"C:\\A \"b\"\n\t\r",        R"("C:\\A \"b\"\n\t\r")"      },
      {"\x01\x1f\x7f",             R"("\u0001\u001F\u007F")"     },
      {"Größe \xf0\x9f\x98\x80", "\"Größe \xf0\x9f\x98\x80\""},
      {"\xfc",                     R"("{xFC}")"                  },
      {"\xed\xa0\x80",             R"("{xED}{xA0}{x80}")"        },
      {"{x41}",                    R"("{x7B}x41}")"              },
      {"{xfF}",                    R"("{x7B}xfF}")"              },
      {"{x4",                      R"("{x4")"                    },
      {"{x4\xff",                  R"("{x4{xFF}")"               },
      {"{n} {{x7B} {}",            R"("{n} {{x7B}x7B} {}")"      },
  };
  for (const Case& each : cases) {
    EXPECT_EQ(asText(each.text), each.recorded);
    EXPECT_EQ(textOf(json::parse(each.recorded).get<std::string>()), each.text) << each.recorded;
  }
}

TEST(RecordedText, KeepsRandomBytes) {
  Random random(7);
  for (int round = 0; round < 2000; ++round) {
    std::string text;
    for (std::uint64_t length = random() % 12; length > 0; --length) {
      text += "{x7BfF}\xc3\xbc\xff\n\x85"[random() % 12];
    }
    EXPECT_EQ(textOf(json::parse(asText(text)).get<std::string>()), text);
  }
}

TEST(RecordedTime, IsReadAsItIsWritten) {
  struct Case {
    std::int64_t time;
    const char* text;
  };
  const std::vector<Case> cases = {
      {0,                     "1970-01-01T00:00:00.000000Z"},
      {1'763'752'475'123'456, "2025-11-21T19:14:35.123456Z"},
      {1'709'164'800'000'001, "2024-02-29T00:00:00.000001Z"},
      {-1,                    "1969-12-31T23:59:59.999999Z"},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(timeText(each.time), each.text);
    EXPECT_EQ(timeOf(each.text), each.time);
  }
  EXPECT_EQ(timeOf("1970-01-01T00:00:01Z"), 1'000'000);
  EXPECT_EQ(timeOf("1970-01-01T00:00:01.5Z"), 1'500'000);
  for (const char* const wrong :
       {"", "1970-01-01", "1970-01-01T00:00:01", "1970-13-01T00:00:01Z", "1970-02-30T00:00:01Z",
        "1970-01-01T24:00:00Z", "1970-01-01T00:00:01.Z", "1970-01-01T00:00:01.1234567Z",
        "1970-01-01T00:00:01.1xZ", "1970-01-01T00:00:01Z ", "-970-01-01T00:00:01Z"}) {
    EXPECT_FALSE(timeOf(wrong)) << wrong;
  }
  for (const std::int32_t minutes : {0, 60, -90, 845}) {
    EXPECT_EQ(zoneOf(zoneText(minutes)), minutes);
  }
}

TEST(RecordedMoment, HasItsKeysInOrder) {
  Random random(1);
  Moment moment = randomMoment(random);
  moment.heading = fullHeading();
  moment.error = {"TalGetZorbUsageEx2", 7106, "lost"};

  std::string keys;
  const auto noteKey = [&](int depth, json::parse_event_t event, const json& parsed) {
    if (depth == 1 && event == json::parse_event_t::key) keys += parsed.get<std::string>() + " ";
    return true;
  };
  const json written = json::parse(lineOf(moment), noteKey);

  EXPECT_EQ(keys,
            "zelk_recording run sequence time zone elapsed_us interval_us missed took_us server "
            "engine version file client sql_connection usage communication error ");
  EXPECT_EQ(written["time"], "2025-11-21T19:14:35.123456Z");
  EXPECT_EQ(written["zone"], "-01:30");
  EXPECT_EQ(written["sequence"], std::numeric_limits<std::uint64_t>::max());
}

TEST(RecordedMoment, HasAHeadingThatFits) {
  for (const std::string& server :
       {std::string(255, '\xff'), std::string(255, '\x01'), std::string(255, 'x')}) {
    Moment moment;
    moment.heading = fullHeading();
    moment.heading.server = server;
    moment.engine.emplace();

    const std::string line = lineOf(moment);

    EXPECT_LT(line.find("\"engine\":"), kHeadingLimit);
    EXPECT_EQ(read(line).heading.server, recordableServer(server));
  }
  for (const char each : {'x', '"'}) {
    EXPECT_EQ(recordableServer(std::string(255, each)), std::string(255, each));
  }
}

// Holds every field of a moment against what the independent parser makes of its line.
class Oracle {
 public:
  explicit Oracle(const json& object) : object_(object) {}

  void operator()(const Key& key, std::integral auto number) const {
    const json& value = object_.at(std::string(key.name));
    for (const Word& word : key.words) {
      if (word.code == static_cast<std::int64_t>(number)) {
        EXPECT_EQ(value, word.word) << key.name;
        return;
      }
    }
    EXPECT_EQ(value, number) << key.name;
  }
  void operator()(const Key& key, const std::string& text) const {
    EXPECT_EQ(textOf(object_.at(std::string(key.name)).get<std::string>()), text);
  }
  void operator()(const Key& key, const tal::Gauge& gauge) const {
    visitGauge(Oracle(object_.at(std::string(key.name))), gauge);
  }

 private:
  const json& object_;
};

TEST(RecordedMoment, SaysWhatTheOracleReads) {
  Random random(2);
  for (int round = 0; round < 200; ++round) {
    const Moment moment = randomMoment(random);
    const json written = json::parse(lineOf(moment));

    visitInformation(Oracle(written["engine"]), *moment.engine);
    visitVersion(Oracle(written["version"]), *moment.version);
    visitUsage(Oracle(written["usage"]), *moment.usage);
    visitCommunication(Oracle(written["communication"]), *moment.communication);
    ASSERT_EQ(written["file"].size(), moment.files->size());
    for (std::size_t at = 0; at < moment.files->size(); ++at) {
      const tal::OpenFile& file = (*moment.files)[at];
      visitFile(Oracle(written["file"][at]), file);
      ASSERT_EQ(written["file"][at]["handle"].size(), file.handles.size());
      for (std::size_t handle = 0; handle < file.handles.size(); ++handle) {
        visitFileHandle(Oracle(written["file"][at]["handle"][handle]), file.handles[handle]);
      }
    }
    ASSERT_EQ(written["client"].size(), moment.clients->size());
    for (std::size_t at = 0; at < moment.clients->size(); ++at) {
      visitClient(Oracle(written["client"][at]), (*moment.clients)[at]);
    }
    ASSERT_EQ(written["sql_connection"].size(), moment.sqlConnections->size());
    for (std::size_t at = 0; at < moment.sqlConnections->size(); ++at) {
      visitSqlConnection(Oracle(written["sql_connection"][at]), (*moment.sqlConnections)[at]);
    }
  }
}

TEST(RecordedMoment, IsReadAsItWasWritten) {
  Random random(3);
  for (int round = 0; round < 1000; ++round) {
    Moment moment = randomMoment(random);
    moment.heading = fullHeading();
    if (round % 4 == 0) moment.files.reset();
    if (round % 4 == 1) moment.clients.reset();
    if (round % 4 == 2) {
      moment.usage.reset();
      moment.error = {"TalGetZorbUsageEx2", -1, "text"};
    }
    const std::string line = lineOf(moment);

    EXPECT_EQ(lineOf(read(line)), line);
  }
}

// Replaces the first occurrence of `part`, which must be there.
std::string replaced(std::string text, const std::string& part, const std::string& by) {
  const std::size_t at = text.find(part);
  EXPECT_NE(at, std::string::npos) << part;
  return text.replace(at, part.size(), by);
}

// Why the line is refused; empty where it is not.
std::string damageOf(const std::string& line) {
  try {
    read(line);
    return "";
  } catch (const Damaged& damaged) {
    return damaged.what();
  }
}

TEST(RecordedMoment, IsRefusedWhenItIsDamaged) {
  Random random(1);
  Moment moment = randomMoment(random);
  moment.heading = fullHeading();
  moment.files->resize(1);
  std::string whole = lineOf(moment);
  whole.pop_back();
  struct Case {
    const char* part;
    const char* by;
    const char* reason;
  };
  const std::vector<Case> cases = {
      {"\"run\"",              "\"run\xff\"",                                                 "UTF-8"                    },
      {"{",                    "{\"server\":\"x\",",                                          "\"server\" is given twice"},
      {"{",                    "{\"new\":1,\"new\":1,",                                       "\"new\" is given twice"   },
      {"\"major\":",           "\"major\":1,\"major\":",                                      "\"major\" is given twice" },
      {"\"zelk_recording\":1", "\"zelk_recording\":2",                                        "version is 2"             },
      {"\"missed\":",          "\"missed\":-1,\"m\":",                                        "\"missed\""               },
      {"\"flag\":",            "\"flag\":25600",                                              "\"flag\""                 },
      {"\"major\":",           "\"major\":\"x\",\"m\":",                                      "\"major\""                },
      {"\"major\":",           "\"major\":1.5,\"m\":",                                        "\"major\""                },
      {"\"major\":",           "\"majo\":",                                                   "\"major\" is missing"     },
      {"\"read_only\":",       "\"read_only\":\"maybe\",\"m\":",                              "\"read_only\""            },
      {"\"file\":[",           "\"file\":[7,",                                                "\"file\""                 },
      {"\"file\":",            "\"file\":{},\"m\":",                                          "\"file\""                 },
      {"\"time\":\"2",         "\"time\":\"x",                                                "\"time\""                 },
      {"\"zone\":\"-",         "\"zone\":\"x",                                                "\"zone\""                 },
      {"\"engine\":",          "\"error\":{\"call\":\"\",\"status\":0,\"text\":\"\"},\"m\":", "\"status\""               },
  };
  for (const Case& each : cases) {
    EXPECT_NE(damageOf(replaced(whole, each.part, each.by)).find(each.reason), std::string::npos)
        << each.part << " " << each.by;
  }
  for (const std::string& line : {std::string(), std::string("7"), std::string("{}"), whole + "}",
                                  whole.substr(0, whole.size() / 2), std::string(100, '\0')}) {
    EXPECT_NE(damageOf(line), "") << line;
  }
  EXPECT_EQ(lineOf(read(replaced(whole, "{", "{\"new\":{\"a\":[1.5]},"))), whole + "\n");
}

// Other programs than ours read what is written.
TEST(RecordedMoment, FitsTheSchemaAndIsReadByOthers) {
  const testing_support::TemporaryFolder folder;
  Random random(4);
  std::string lines;
  for (int round = 0; round < 40; ++round) {
    Moment moment = randomMoment(random);
    moment.heading = fullHeading();
    if (round == 0) {
      moment = {};
      moment.heading = fullHeading();
      moment.error = {"TalConnectServer", 7103, "away"};
    }
    appendLine(lines, moment);
  }
  testing_support::writeFile(folder / "r.ndjson", lines);
  const char* const script =
      "import json, jsonschema, sys\n"
      "validator = jsonschema.Draft202012Validator(json.load(open(sys.argv[1])))\n"
      "validator.check_schema(validator.schema)\n"
      "lines = open(sys.argv[2], encoding='utf-8').read().split('\\n')\n"
      "for line in lines[:-1]: validator.validate(json.loads(line))\n"
      "print(len(lines))\n";

  const auto python = testing_support::run({
      .program = "/usr/bin/env",
      .arguments = {"python3", "-c", script, RECORDING_SCHEMA, (folder / "r.ndjson").string()}
  });
  const auto jq = testing_support::run({
      .program = "/usr/bin/env",
      .arguments = {"jq", "-c", ".zelk_recording", (folder / "r.ndjson").string()}
  });

  EXPECT_EQ(python.output, "41\n") << python.error;
  EXPECT_EQ(jq.output.size(), 80U) << jq.error;
}

}  // namespace
}  // namespace recording_tests
