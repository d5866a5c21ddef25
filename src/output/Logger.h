// The one place through which all report output goes.
#pragma once

#include <cstdint>

#include "messages/MessageHelper.h"
#include "orv/Collections.h"
#include "orv/Object.h"
#include "orv/Result.h"
#include "orv/String.h"
#include "orv/io/OutputStreams.h"
#include "orv/io/Writers.h"

// The severity scale. A threshold of kOff lets nothing through.
enum class Level : std::int32_t {
  kAll = 0,
  kFinest = 1,
  kFiner = 2,
  kFine = 3,
  kConfig = 4,
  kInfo = 5,
  kWarning = 6,
  kSevere = 7,
  kOff = 8,
};

// Writes each message of sufficient level to every handler as one line, and flushes it. The
// handlers get it in the order in which they were added. A new logger has no handler and the
// threshold kOff. Used by one thread. Writing throws orv::io::IoException.
class Logger : public orv::Object {
 public:
  Logger() : Logger("ARSK", "ARSK_") {}
  // The bundle and key prefix of the texts for files that cannot be created.
  Logger(const char* bundle, const char* prefix);
  ~Logger() override;

  // Closes every handler. Call it when everything is written: some file systems report a failed
  // write only when the file is closed. Throws orv::io::IoException.
  void close();

  void addStdOutHandler();
  // Creates the folders of the path and the file, or empties the file. A name with a NUL byte and a
  // planted file (orv/Files.h) count as files that cannot be created. Throws orv::io::IoException
  // or orv::ResultException; in this case no handler is added.
  void addFileHandler(const orv::String& path);

  void setLevel(Level level) noexcept { level_ = level; }
  // The name of a level, in upper or lower case; an unknown name turns all output off (deliberate).
  void setLevel(const orv::String& name);

  // `message` is a String, a literal or a sum of them.
  template <class Text>
  void log(Level level, const Text& message) {
    if (level_ > level) return;
    for (const auto& handler : handlers_) {
      handler->println(message);
      handler->flush();
    }
  }
  void severe(const orv::String& message) { log(Level::kSevere, message); }
  void warning(const orv::String& message) { log(Level::kWarning, message); }
  template <class Text>
  void info(const Text& message) {
    log(Level::kInfo, message);
  }
  void config(const orv::String& message) { log(Level::kConfig, message); }
  void fine(const orv::String& message) { log(Level::kFine, message); }
  void finer(const orv::String& message) { log(Level::kFiner, message); }
  void finest(const orv::String& message) { log(Level::kFinest, message); }

  // Turns a failure to create a file into orv::io::IoException, or into orv::ResultException if the
  // code has no text.
  [[noreturn]] void throwError(orv::Result code, const orv::String& path) const;

 private:
  void addHandler(orv::Reference<orv::io::OutputStream> stream);

  Level level_ = Level::kOff;
  orv::collections::List<orv::io::PrintWriter> handlers_;
  orv::Reference<MessageHelper> messages_;
};
