// The layout of report lines.
#pragma once

#include "orv/Object.h"
#include "orv/String.h"
#include "output/Logger.h"

// Turns titles, data and errors into finished lines. Each line is one message of the logger, which
// it shares. Titles and data have level INFO, errors SEVERE. Writing throws orv::io::IoException.
class FormatHelper : public orv::Object {
 public:
  explicit FormatHelper(Logger* logger) : logger_(logger) {}

  // Closes the handlers of the logger (see Logger.h).
  void close() { logger_->close(); }

  void setLevel(Level level) { logger_->setLevel(level); }

  // This many tabs; none if the count is 0 or negative.
  static orv::String getTabStr(int count);
  // Appends blanks until the text has this length; a longer text is not changed.
  static void padToLen(orv::String& text, int length);

  void putError(const orv::String& message);
  // `data` is a String, a literal or a sum of them.
  template <class Text>
  void putData(const Text& data, int tabs) {
    logger_->info(newLine(tabs) += data);
  }
  // Three lines: the title in capitals between two rules of "=" of the same length.
  void putHeader(const orv::String& title, int tabs);

 private:
  // The line, with this many tabs.
  orv::String& newLine(int tabs);

  orv::Reference<Logger> logger_;
  orv::String line_;  // used again for each line
};
