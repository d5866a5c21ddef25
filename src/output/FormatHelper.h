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
    logger_->info(orv::summand(indent(tabs)) + orv::summand(data));
  }
  // Three lines: the title in capitals between two rules of "=" of the same length.
  void putHeader(orv::String title, int tabs);

 private:
  // This many tabs, which stay as they are until the next call.
  const orv::String& indent(int tabs) {
    if (tabs != depth_) setIndent(tabs);
    return indent_;
  }
  void setIndent(int tabs);

  orv::Reference<Logger> logger_;
  // Kept from line to line, so that a line needs no memory of its own.
  int depth_ = 0;
  orv::String indent_;
  orv::String rule_;
};
