#include <unistd.h>

#include <algorithm>

#include "monitor/Keys.h"
#include "monitor/MonitorProcessor.h"
#include "orv/Process.h"
#include "orv/io/InputStreams.h"
#include "orv/io/OutputStreams.h"
#include "output/ProcessWide.h"

namespace {

constexpr long kSleepSliceMilliseconds = 3000;
constexpr long kMillisecondsPerSecond = 1000;
constexpr long kMicrosecondsPerMillisecond = 1000;

orv::Reference<orv::io::PrintWriter> newStdOutWriter() {
  return newPrintWriter(orv::makeReference<orv::io::StdioOutputStream>(), true);
}

}  // namespace

void MonitorProcessor::processMonitorRequestsUntilStopped(bool json) {
  const auto writer = newStdOutWriter();
  const bool isLimited = config_->refreshLimit > 0;
  const auto threadWriter = newStdOutWriter();
  if (!isLimited) startUserInputThread(threadWriter.get());
  const long sleepTime = config_->refreshRate * kMillisecondsPerSecond;
  const orv::String prompt = isLimited ? messages_->getResStr("INFO_EXIT_W_LIMIT")
                                       : messages_->getResStr("INFO_EXIT") + " ";
  int count = 0;
  while (!s_stopRequested) {
    refresh(json);
    ++count;
    if (isLimited && count >= config_->refreshLimit) {
      s_stopRequested = true;
      if (!config_->consoleOutput) break;
    }
    if (config_->consoleOutput) printPromptAndProgress(*writer, prompt, count);
    if (!s_stopRequested) incrementalSleep(sleepTime);
  }
  if (orv::stopSignalCame()) {
    writer->println(messages_->getResStr("MSG_EXIT"));
  } else {
    threadWriter->flush();  // retries the thread's closing line: a failure ends the run normally
  }
}

void MonitorProcessor::refresh(bool json) {
  processMonitorRequests(json);
  orv::returnFreeMemory();  // the memory of one report is not kept while waiting for the next
}

void MonitorProcessor::printPromptAndProgress(orv::io::PrintWriter& writer,
                                              const orv::String& prompt, int count) {
  writer.println();
  writer.print(prompt);
  if (config_->refreshLimit > 0) {
    writer.println("  (" + orv::String::valueOf(count) + " of " +
                   orv::String::valueOf(config_->refreshLimit) + ")");
  } else {
    writer.println(" ");
  }
  writer.flush();
}

void MonitorProcessor::incrementalSleep(long milliseconds) {
  while (milliseconds > 0) {
    const long slice = std::min(milliseconds, kSleepSliceMilliseconds);
    usleep(static_cast<useconds_t>(slice * kMicrosecondsPerMillisecond));
    if (s_stopRequested) return;
    milliseconds -= slice;
  }
}

void MonitorProcessor::processMonitorRequestManually(bool json) {
  refresh(json);
  const auto writer = newStdOutWriter();
  const orv::String prompt = messages_->getResStr("INFO_EXIT_REFRESH");
  writer->println();
  writer->println(prompt);
  writer->flush();
  readKeysManually(*writer, prompt, json);
}

void MonitorProcessor::readKeysManually(orv::io::PrintWriter& writer, const orv::String& prompt,
                                        bool json) {
  const auto input = orv::makeReference<orv::io::StdioInputStream>();
  int bad = 0;
  int count = 0;
  while (true) {
    const int byte = input->read();
    if (s_stopRequested || isKey(byte, 'Q')) {
      writer.println(messages_->getResStr("MSG_EXIT"));
      return;
    }
    if (isKey(byte, 'R')) {
      refresh(json);
      writer.println();
      writer.print(prompt);
      writer.flush();
    }
    if (!isTyped(byte)) ++bad;  // never reset, unlike in the keyboard thread (deliberate)
    if (bad > kToleratedBadBytes) {
      writer.println(messages_->getResStr("ERR_INTERACTIVE_INPUT"));
      return;
    }
    if (config_->refreshLimit > 0 && ++count >= config_->refreshLimit) {
      writer.println(messages_->getResStr("MSG_EXIT"));
      return;
    }
  }
}
