// Lets each of the 23 functions fail in each way, at its first, a middle and its last call of a
// scrape. The table of what a status does to a report also says what it does to a scrape: it is
// down, lacks a section, or is complete. The next scrape is complete in any case.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <new>
#include <set>
#include <string>

#include "companions/exporter/pages.h"
#include "companions/exporter/text_format.h"
#include "tests/program/fake/faults/effects.h"
#include "tests/support/fake_engine/call.h"
#include "tests/support/temporary_folder.h"

namespace {

using program_tests::Effect;
using program_tests::EffectRow;
using testing_support::writeFile;

constexpr int kThrows = 9999;  // no status: the function throws

std::map<std::string, int> calls;
std::string failing;  // the function that fails, at its call `failingCall`
int failingCall = 0;
int failingStatus = 0;

constexpr const char* kEngine = R"(
file = [{ name = "a", handle = [{ client = "x" }, { client = "x" }] }, { name = "b" },
        { name = "c", handle = [{ client = "y" }] }]
client = [{ id = "x", handle = [{ file = "a" }, { file = "a" }] }, { id = "y" }, { id = "z" }]
sql_connection = [{ user_name = "x" }, { user_name = "y" }, { user_name = "z" }]
)";

// It starts or ends the library, a connection or a list. Its status is ignored.
bool isStartOrEnd(const std::string& function) {
  return program_tests::effectOf(function, 1) == Effect::kIgnored;
}

// The section of a scrape that a function serves; empty if it serves all.
std::string sectionOf(const std::string& function) {
  const auto has = [&](const char* part) { return function.find(part) != std::string::npos; };
  if (has("File")) return "files";
  if (has("Client")) return "clients";
  if (has("SQL")) return "sql_connections";
  if (has("Usage")) return "usage";
  return has("CommStat") ? "communication" : "";
}

// One sample, for instance zelk_scrape_section_success{section="files"}; -1 if it is absent.
double valueIn(const std::string& scrape, const std::string& sample) {
  const auto at = scrape.find('\n' + sample + ' ');
  return at == std::string::npos ? -1 : std::stod(scrape.substr(at + sample.size() + 2));
}

class ExporterFaults : public testing::TestWithParam<EffectRow> {
 protected:
  ExporterFaults() {
    writeFile(folder_ / "engine.toml", kEngine);
    complete_ = withoutTimes(twoScrapes("", 0, 0).first);
  }

  // Two scrapes of one target; the first one has the fault, if any.
  std::pair<std::string, std::string> twoScrapes(const std::string& function, int call,
                                                 int status) {
    std::pair<std::string, std::string> scrapes;
    failing = function;
    failingCall = call;
    failingStatus = status;
    calls.clear();
    const companions::EngineLibrary library;
    companions::Settings settings;
    settings.login.server = "sim:" + (folder_ / "engine.toml").string();
    exporter::Target target("x", settings, nullptr);
    scrapes.first = scrape(target);
    callsOfFirst_ = calls;
    scrapes.second = scrape(target);
    return scrapes;
  }

  static std::string scrape(exporter::Target& target) {
    const auto deadline = exporter::Clock::now() + std::chrono::minutes(1);
    return serialized(exporter::scraped(target, deadline, 0), exporter::Format::kText);
  }

  void check(int call, int status) {
    const auto [first, second] = twoScrapes(GetParam().function, call, status);
    const Effect effect = program_tests::effectOf(GetParam().function, status);
    const std::string section = sectionOf(GetParam().function);
    const std::string success = "zelk_scrape_section_success{section=\"" + section + "\"}";
    const std::string number = "zelk_scrape_section_status{section=\"" + section + "\"}";
    // A call that returns no status to a C caller may do anything; here it fails the scrape.
    const bool isDown = status == kThrows || (effect == Effect::kEndsRun && section.empty());
    if (isDown) {
      EXPECT_EQ(valueIn(first, "zelk_up"), 0) << first;
      EXPECT_EQ(first.find("zelk_uptime"), std::string::npos) << first;
    } else {
      EXPECT_EQ(valueIn(first, "zelk_up"), 1) << first;
      const bool fails = effect == Effect::kEndsRun;
      EXPECT_EQ(valueIn(first, number), section.empty() ? -1 : fails ? status : 0) << first;
      EXPECT_EQ(valueIn(first, success), section.empty() ? -1 : fails ? 0 : 1) << first;
    }
    EXPECT_EQ(withoutTimes(second), complete_);
  }

  // The scrape without its durations.
  static std::string withoutTimes(const std::string& scrape) {
    std::string kept;
    for (std::size_t begin = 0; begin < scrape.size();) {
      const auto end = scrape.find('\n', begin) + 1;
      const std::string line = scrape.substr(begin, end - begin);
      if (line.find("_duration_seconds") == std::string::npos) kept += line;
      begin = end;
    }
    return kept;
  }

  const testing_support::TemporaryFolder folder_;
  std::string complete_;
  std::map<std::string, int> callsOfFirst_;  // in the first scrape
};

TEST_P(ExporterFaults, LeaveACleanNextScrape) {
  const std::string function = GetParam().function;
  const int count = std::max(callsOfFirst_[function], 1);
  for (const int call : std::set<int>{1, (count + 1) / 2, count}) {
    for (const int status : {7008, 7010, 7015, 7106, -5, 1, kThrows}) {
      if (status == kThrows && isStartOrEnd(function)) continue;  // nothing may be thrown there
      SCOPED_TRACE("call " + std::to_string(call) + ", status " + std::to_string(status));
      check(call, status);
    }
  }
}

TEST_P(ExporterFaults, AreCalledAsOftenAsTheScrapeSays) {
  twoScrapes("", 0, 0);
  const std::string section = sectionOf(GetParam().function);

  int asked = 0;
  for (const auto& [function, count] : callsOfFirst_) {
    if (sectionOf(function) == section && !isStartOrEnd(function)) asked += count;
  }

  const std::string sample = "zelk_scrape_section_calls{section=\"" + section + "\"}";
  EXPECT_EQ(valueIn(complete_, sample), section.empty() ? -1 : asked);
}

INSTANTIATE_TEST_SUITE_P(Of, ExporterFaults, testing::ValuesIn(program_tests::effectTable()),
                         [](const auto& each) { return std::string(each.param.function); });

}  // namespace

std::int16_t fake_engine::serve(const Call& call, const Next& next) {
  const bool fails = ++calls[call.function] == failingCall && failing == call.function;
  if (!fails) return next();
  if (isStartOrEnd(call.function)) next();
  if (failingStatus == kThrows) throw std::bad_alloc();
  return static_cast<std::int16_t>(failingStatus);
}
