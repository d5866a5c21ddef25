// What is typed while a run waits for keys. The input is standard input as a whole.
#include "monitor/MonitorProcessor.h"
#include "orv/i18n/StringBundle.h"
#include "output/ProcessWide.h"
#include "tests/fuzz/fuzzed_engine.h"
#include "tests/fuzz/target.h"
#include "tests/support/redirected_streams.h"

namespace fuzzing {
namespace {

// TalStart, the engine's information and its version.
constexpr std::size_t kCallsBeforeRefreshes = 3;
constexpr int kToleratedBadBytes = 25;

// One at the start and one for each "r", until "q" or too many bytes that nobody types.
std::size_t refreshesFor(std::string_view keys) {
  std::size_t refreshes = 1;
  int bad = 0;
  for (const char key : keys) {
    const int byte = static_cast<unsigned char>(key);
    if (key == 'q' || key == 'Q' || bad > kToleratedBadBytes) break;
    if (key == 'r' || key == 'R') ++refreshes;
    if (byte == 0 || byte > 127) ++bad;
  }
  return refreshes;
}

// A refresh is one call.
void monitor() {
  ConfigData config;
  config.outputType = "CONSOLE";
  config.consoleOutput = true;
  config.showConnections = true;
  MonitorProcessor(&config, false).startMonitoring(false, false);
}

}  // namespace

void run(std::string_view input) {
  orv::i18n::StringBundle::setFolder("/no messages");
  createProcessWideObjects();
  engine() = FuzzedEngine("");
  const testing_support::CapturedOutput output;
  const testing_support::TypedInput keys(input);

  monitor();

  require(engine().calls == kCallsBeforeRefreshes + refreshesFor(input),
          "there is a refresh for each r");
  require(!engine().connections.isTaken && engine().stops == 1, "the run ends in order");
}

}  // namespace fuzzing
