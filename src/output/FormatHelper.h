// The layout of report lines.
#pragma once

#include "orv/Object.h"
#include "orv/String.h"
#include "output/Logger.h"

// Turns titles, data and errors into finished lines, each one message of the logger that it
// shares. Titles and data have level INFO, errors SEVERE. Writing throws orv::io::IoException.
class FormatHelper : public orv::Object {
 public:
  explicit FormatHelper(Logger* logger) : logger_(logger) {}

  // Closes the logger's handlers; see there.
  void close() { logger_->close(); }

  void setLevel(Level level) { logger_->setLevel(level); }

  // As many tabs as the count says; none when it is 0 or negative.
  static orv::String getTabStr(int count);
  // Appends blanks until the text has this length; a longer text is left as it is.
  static void padToLen(orv::String& text, int length);

  void putError(const orv::String& message);
  void putData(orv::String data, int tabs);
  // Three lines: the title in capitals between two rules of "=" as long as it.
  void putHeader(const orv::String& title, int tabs);

 private:
  orv::Reference<Logger> logger_;
};
