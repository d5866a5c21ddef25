#include <unistd.h>

#include <utility>

#include "monitor/Keys.h"
#include "monitor/MonitorProcessor.h"
#include "orv/Exception.h"
#include "orv/Process.h"
#include "orv/io/InputStreams.h"

namespace {

constexpr useconds_t kStartDelayMicroseconds = 100'000;

}  // namespace

// The data of the keyboard thread, which owns it.
class MonitorProcessor::UserInputThreadArgs : public orv::Object {
 public:
  UserInputThreadArgs(orv::String exitText, orv::String inputErrorText,
                      orv::io::PrintWriter* writer, int limit)
      : exitText_(std::move(exitText)),
        inputErrorText_(std::move(inputErrorText)),
        writer_(writer),
        limit_(limit) {}

  // Until "q", too many bad bytes, or a stop signal, which the main thread handles.
  void readKeys(orv::io::StdioInputStream& input) {
    int bad = 0;
    int count = 0;
    while (true) {
      const int byte = input.read();
      if (orv::stopSignalCame()) return;
      if (isKey(byte, 'Q')) return stop(exitText_);
      bad = isTyped(byte) ? 0 : bad + 1;
      if (bad > kToleratedBadBytes) return stop(inputErrorText_);
      if (limit_ > 0 && ++count >= limit_) return stop(exitText_);
    }
  }

 private:
  // Once the stop is requested, the main thread may use the writer.
  void stop(const orv::String& closingLine) {
    try {
      writer_->println(closingLine);
    } catch (const orv::io::IoException&) {
      // The line is still in the writer's buffer: the main thread writes it.
    }
    s_stopRequested = true;
  }

  orv::String exitText_;
  orv::String inputErrorText_;
  orv::Reference<orv::io::PrintWriter> writer_;
  int limit_;
};

void MonitorProcessor::startUserInputThread(orv::io::PrintWriter* out) {
  const auto arguments = orv::makeReference<UserInputThreadArgs>(
      messages_->getResStr("MSG_EXIT"), messages_->getResStr("ERR_INTERACTIVE_INPUT"), out,
      config_->refreshLimit);
  arguments->addReference();  // the thread's
  const orv::Result result =
      orv::ORVThreadCreate(readUserInput, arguments.get(), "ZelkUserInputThread");
  if (result == 0) return;
  arguments->releaseReference();
  throw orv::ResultException(result, messages_->getResStr("THREAD_FATAL_ERROR", result));
}

void* MonitorProcessor::readUserInput(void* arguments) {
  const orv::Reference<UserInputThreadArgs> owned(static_cast<UserInputThreadArgs*>(arguments));
  owned->releaseReference();  // `owned` holds it from here on
  const auto input = orv::makeReference<orv::io::StdioInputStream>();
  usleep(kStartDelayMicroseconds);
  owned->readKeys(*input);
  return nullptr;
}
