#include "monitor/JsonFrame.h"

#include "output/ProcessWide.h"

namespace {

enum FrameState { kNotOpened = 0, kOwnedByRun = 1, kOpened = 2, kComplete = 3 };

int s_jsonFrameState = kNotOpened;

void openFrame() {
  if (s_jsonFrameState == kComplete) return;
  if (s_jsonFrameState != kNotOpened) {
    s_jsonFrameState = kNotOpened;  // the closing writes what the interrupted run could not write
    return;
  }
  for (const orv::String& line : jsonHeaderLines(*s_msgHelper)) s_pw->println(line);
  s_jsonFrameState = kOpened;
}

void closeFrame() {
  if (s_jsonFrameState != kOwnedByRun && s_jsonFrameState != kComplete) s_pw->println("}");
  s_jsonFrameState = kNotOpened;
}

}  // namespace

std::array<orv::String, 5> jsonHeaderLines(const MessageHelper& messages) {
  return {
      "\n{",
      "\t\"description\": \"Monitor Utility\",",
      "\t\"title\": \"JSON output\",",
      "\t\"version\": \"" + messages.getResStr("NAME", kProgramVersion) + "\",",
      "\t\"copyright\": \"" + messages.getResStr("COPYRIGHT") + "\",",
  };
}

void displayJSONHeader(bool json, int close, int mode) {
  if (!json) return;
  if (close == 1) {
    closeFrame();
  } else if (close == 0 && mode == 0) {
    openFrame();
  } else if (close == 0 && mode == 1) {
    s_jsonFrameState = kOwnedByRun;
  }
}

void completeJsonDocument() { s_jsonFrameState = kComplete; }
