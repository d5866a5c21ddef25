#include "tests/program/fake/expected_text.h"

namespace program_tests {
namespace {

const char* wordFor(bool isOn) { return isOn ? "Yes\n" : "No\n"; }

}  // namespace

std::string runHeader(const Shown& shown) {
  std::string text =
      "<Ddd Mmm 00 00:00:00 UTC 0000>\n"
      "\n"
      "//User Configuration\n";
  text += "Server:              " + shown.server + "\n";
  text += "Refresh Rate(secs):  " + shown.rate + "\n";
  text += "Refresh Limit:       " + shown.limit + "\n";
  text += "Output:              " + shown.output + "\n";
  text += "File Name:           " + shown.file + "\n";
  text += "//Monitor Activities\n";
  text += std::string("Files:               ") + wordFor(shown.files);
  text += std::string("Sessions:            ") + wordFor(shown.sessions);
  text += std::string("Connections:         ") + wordFor(shown.connections);
  text += std::string("Resource Stats:      ") + wordFor(shown.resources);
  text += std::string("Communication Stats: ") + wordFor(shown.communication);
  text += std::string("Handle Detail:       ") + wordFor(shown.handles);
  text +=
      "//End of Configuration\n"
      "\n"
      "=========================\n"
      "ENGINE VERSION: 00.00.000\n"
      "=========================\n"
      "======================================\n"
      "*** START RECORD 00/00/00 00:00 XM ***\n"
      "======================================\n";
  return text;
}

}  // namespace program_tests
