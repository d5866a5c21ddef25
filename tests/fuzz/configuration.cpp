// The configuration file.
#include <string>

#include "config/ConfigFileReader.h"
#include "orv/i18n/StringBundle.h"
#include "tests/fuzz/target.h"
#include "tests/support/temporary_folder.h"

namespace fuzzing {
namespace {

// Every key, each with a value of its own; a second sign empties that of the password.
constexpr std::string_view kComplete = R"(
SERV=s
USER=u
PASS=p=q
REFR=7
LIMI=8
OUTP=console
NAME=n
FILE=no
SESS=yes
CONN=no
RESO=yes
COMM=no
HAND=yes
)";

class Folder {
 public:
  Folder() { orv::i18n::StringBundle::setFolder(orv::String(folder_.path().string())); }

  // The settings, or null where the file is refused.
  [[nodiscard]] orv::OwningPtr<ConfigData> read(std::string_view text) const {
    const auto path = folder_ / "zelk.cfg";
    testing_support::writeFile(path, text);
    try {
      return ConfigFileReader(orv::String(path.string())).readConfiguration();
    } catch (const ConfigException& refusal) {
      require(!refusal.getDescription().isEmpty(), "a refused configuration has a reason");
      return {};
    }
  }

 private:
  testing_support::TemporaryFolder folder_;
};

void requireUsable(const ConfigData& data) {
  require(!data.server.isEmpty(), "a server is set");
  require(!data.outputType.isEmpty(), "an output is set");
  require(data.consoleOutput || data.fileOutput, "the reports go somewhere");
  require(!data.logFileName.isEmpty(), "the log file has a name");
  require(data.refreshRate == 0 || data.refreshRate >= 5, "the refresh rate is 0 or at least 5");
  require(data.refreshLimit >= 0, "the limit is not negative");
  require(data.refreshRate > 0 || data.refreshLimit == 0, "there is no limit without a rate");
  for (const orv::String* text : {&data.server, &data.user, &data.password, &data.outputType}) {
    require(!text->contains('=') && !text->contains('\n'), "a value is part of one line");
  }
}

void requireComplete(const ConfigData& data) {
  require(data.server == "s" && data.user == "u" && data.password.isEmpty() &&
              data.refreshRate == 7 && data.refreshLimit == 8 && data.outputType == "console" &&
              data.logFileName == "n",
          "the last line of a key holds");
  require(data.consoleOutput && !data.fileOutput && !data.showFiles && data.showSessions &&
              !data.showConnections && data.showResources && !data.showCommunications &&
              data.showHandles,
          "the last line of a flag holds");
}

}  // namespace

void run(std::string_view input) {
  static const Folder folder;
  if (const auto data = folder.read(input)) requireUsable(*data);
  // Only a line that is too long may make this one unusable.
  const auto data = folder.read(std::string(input).append(kComplete));
  require(data != nullptr || input.size() > 60000, "a complete configuration is accepted");
  if (data) requireComplete(*data);
}

}  // namespace fuzzing
