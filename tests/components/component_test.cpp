#include "tests/components/component_test.h"

#include <numeric>

#include "monitor/JsonFrame.h"
#include "monitor/MonitorProcessor.h"
#include "output/ProcessWide.h"
#include "tests/components/recorded_sleep.h"

namespace component_tests {
namespace {

constexpr std::string_view kProgramTexts = R"(
ZELK_NAME=product %s
ZELK_COPYRIGHT=(c) somebody
ZELK_USAGE=call it so
ZELK_FATAL_ERROR=fatal 0x%08X
ZELK_FILE_NOT_FOUND_ERROR=not there
ZELK_ACCESS_ERROR=not allowed
ZELK_ERR_CREATE_FILE=cannot create [%s]: %s (0x%08X)
ZELK_ERR_WRITE_FILE=incomplete: %s: %s
ZELK_STANDARD_OUTPUT=the console
ZELK_STANDARD_ERROR=the error output
ZELK_ERR_CREDENTIALS_TOO_LONG=too long
ZELK_HDR_USR_CONFIG=begin of settings
ZELK_HDR_END_CFG=end of settings
ZELK_MSG_EXIT=good bye
ZELK_INFO_EXIT=type q
ZELK_INFO_EXIT_W_LIMIT=until the limit
ZELK_INFO_EXIT_REFRESH=type r or q
ZELK_ERR_INTERACTIVE_INPUT=bad input
)";

constexpr std::string_view kEngineTexts = R"(
ORV_MSG_P_E_7103=login refused
ORV_MSG_P_E_-5=below zero
)";

}  // namespace

std::string lines(std::initializer_list<std::string_view> texts) {
  constexpr std::string_view kTab = "\\t";
  std::string result;
  for (std::string_view text : texts) {
    for (std::size_t at = text.find(kTab); at != std::string_view::npos; at = text.find(kTab)) {
      result.append(text.substr(0, at)).push_back('\t');
      text.remove_prefix(at + kTab.size());
    }
    result.append(text).push_back('\n');
  }
  return result;
}

ComponentTest::ComponentTest() {
  messages_.add("ZELK.properties", kProgramTexts);
  messages_.add("TALMSG.properties", kEngineTexts);
  engine() = ScriptedEngine{};
  sleeping() = RecordedSleep{};
  s_stopRequested = false;
  m_JSON = false;
  createProcessWideObjects();
  s_pw = newPrintWriter(output_, true);
  s_errpw = newPrintWriter(errors_, true);
}

ComponentTest::~ComponentTest() {
  engine() = ScriptedEngine{};
  sleeping() = RecordedSleep{};
  s_stopRequested = false;
  m_JSON = false;
  s_pw = newPrintWriter(output_, true);
  displayJSONHeader(true, 1, 2);  // closes the frame that a test left open
  createProcessWideObjects();
}

std::string ComponentTest::bytesOf(const Recording& stream) {
  const auto& writes = stream.writes();
  return std::accumulate(writes.begin(), writes.end(), std::string());
}

}  // namespace component_tests
