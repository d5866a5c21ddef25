// Another engine's library, of whatever quality, under the whole monitor. The first line has a
// letter for each section that is on (F files, S sessions, Q SQL connections, R resources,
// C communication), H for handle detail, J for JSON and L for the local engine; the others are the
// engine's answers.
#include <nlohmann/json.hpp>
#include <string>

#include "engine/VXAMonitorHelper.h"
#include "monitor/MonitorProcessor.h"
#include "orv/i18n/StringBundle.h"
#include "output/ProcessWide.h"
#include "tests/fuzz/fuzzed_engine.h"
#include "tests/fuzz/lines.h"
#include "tests/fuzz/target.h"
#include "tests/support/temporary_folder.h"

namespace fuzzing {
namespace {

// An entry of a list makes at most so many bytes of output.
constexpr std::size_t kMostBytesPerCall = 8192;
constexpr std::size_t kMostBytesBeside = 65536;

class Folder {
 public:
  Folder() {
    orv::i18n::StringBundle::setFolder(orv::String((folder_ / "no messages").string()));
    createProcessWideObjects();
  }

  [[nodiscard]] std::filesystem::path log() const { return folder_ / "log"; }

 private:
  testing_support::TemporaryFolder folder_;
};

bool has(std::string_view letters, char letter) {
  return letters.find(letter) != std::string_view::npos;
}

ConfigData configurationOf(std::string_view letters, const std::filesystem::path& log) {
  ConfigData config;
  if (!has(letters, 'L')) config.server = "server";
  config.outputType = "FILE";
  config.fileOutput = true;
  config.logFileName = orv::String(log.string());
  config.showFiles = has(letters, 'F');
  config.showSessions = has(letters, 'S');
  config.showConnections = has(letters, 'Q');
  config.showResources = has(letters, 'R');
  config.showCommunications = has(letters, 'C');
  config.showHandles = has(letters, 'H');
  return config;
}

// True if the run came to its end.
bool monitor(ConfigData& config, bool json) {
  try {
    MonitorProcessor(&config, json).startMonitoring(true, json);
    return true;
  } catch (const VXAException& failure) {
    require(failure.getErrorCode() != 0, "success is no failure");
    return false;
  }
}

void requireOrderlyEnd() {
  require(engine().stops == 1, "the library is stopped once");
  require(engine().disconnects <= 1, "the engine is disconnected once");
  require(!engine().files.isTaken && !engine().clients.isTaken && !engine().connections.isTaken,
          "a snapshot that was taken is released");
}

// The conditions under which docs/output.md promises a JSON document, and a little more.
bool isDocumentPromised(const ConfigData& config) {
  const bool showsHandles = config.showHandles || !(config.showFiles || config.showSessions);
  return config.showCommunications && engine().namedProtocols == 1 && showsHandles &&
         engine().isWellFormed;
}

void requireOutput(const std::string& output, bool isDocument) {
  require(output.size() <= kMostBytesBeside + kMostBytesPerCall * engine().calls,
          "the output is as long as what was read");
  require(!isDocument || nlohmann::json::accept(output), "the document is well-formed");
}

}  // namespace

void run(std::string_view input) {
  static const Folder folder;
  const std::string_view letters = takeLine(input);
  engine() = FuzzedEngine(input);
  const bool json = has(letters, 'J');
  ConfigData config = configurationOf(letters, folder.log());

  const bool isWhole = monitor(config, json);

  requireOrderlyEnd();
  requireOutput(testing_support::readFile(folder.log()),
                isWhole && json && isDocumentPromised(config));
}

}  // namespace fuzzing
