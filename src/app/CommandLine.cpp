#include "app/CommandLine.h"

#include <cstddef>

#include "output/ProcessWide.h"
#include "util/Utils.h"

namespace {

constexpr int kAccepted = 0;
constexpr int kRejected = 1;

constexpr std::size_t kSwitchAt = 0;
constexpr std::size_t kFileNameAt = 1;
constexpr std::size_t kRunOnceAt = 2;

}  // namespace

int parseArgs(int argc, char** argv, orv::String& fileName, bool& runOnce) {
  const auto arguments = Utils::convertToStringList(argc - 1, argv + 1);
  for (const orv::String& argument : *arguments) {
    if (argument == "-JSON" || argument == "-json") {
      m_JSON = true;
      break;
    }
  }
  if (arguments->size() <= kFileNameAt) return kRejected;
  if (arguments->get(kSwitchAt) != "-f") return kRejected;
  fileName = arguments->get(kFileNameAt);
  if (arguments->size() == kRunOnceAt) return kAccepted;
  if (arguments->get(kRunOnceAt) != "-runonce") return kRejected;
  runOnce = true;
  return kAccepted;
}

void displayUsage(bool json) {
  if (!json) {
    s_pw->println(s_msgHelper->getResStr("USAGE"));
    return;
  }
  s_pw->println("\t\"usage\":");
  s_pw->println("\t[");
  s_pw->println("\t\t\"zelk -f <path>config_file [-runonce] [-JSON]\"");
  s_pw->println("\t]");
  s_pw->println("}");
}
