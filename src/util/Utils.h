// Helpers of the whole program: files and folders, lists, numbers, times, versions, escaping.
#pragma once

#include <vector>

#include "orv/Collections.h"
#include "orv/Exception.h"
#include "orv/Object.h"
#include "orv/Result.h"
#include "orv/String.h"

// Thrown by the parsers of Utils, without a description. The caller decides which value to use
// instead. If nobody catches it, it ends the run as orv::Exception does.
class NumberFormatException : public orv::Exception {
 public:
  using orv::Exception::Exception;
};

class Utils {
 public:
  using StringList = orv::collections::List<orv::String>;

  Utils() = delete;

  // True if the system reports that the path exists; false after any failure.
  static bool fileExist(const orv::String& path);
  // True if the path can be opened as a folder; false after any failure.
  static bool dirExist(const orv::String& path);
  // Makes the missing folders above the file `path`, with all permissions that the mask of the
  // process allows. Returns 0, or the result code of the first folder that cannot be made.
  static orv::Result createDirs(const orv::String& path);

  static void removeTabChars(orv::String& text);
  // Puts a backslash before each `character`, but only before those that begin within the length
  // that the text had on entry, counted with the backslashes inserted so far (deliberate: parsers
  // rely on it). A character above 127 is never found.
  static void addBackslashChars(orv::String& text, char character);

  // The narrow texts in their order; a count below 1 gives an empty list.
  static orv::Reference<StringList> convertToStringList(int count, const char* const* texts);
  // One number for each text. Throws NumberFormatException as parseInt does.
  static std::vector<int> convertStringListToIntArray(const StringList& list);
  // The texts in their order, with the delimiter (a blank) between neighbours.
  static orv::String createDelimitedStr(const StringList& list, const char* delimiter);
  static orv::String convertStringListToString(const StringList& list);

  // Reads an optional sign and decimal digits. Blanks, tabs and line ends around them are ignored.
  // Throws NumberFormatException for anything else, for a number that does not fit the type, and
  // for a zero that is not written as "0" (deliberate).
  static int parseInt(const orv::String& text);
  static long parseLong(const orv::String& text);

  // The local time in a format of strftime; empty if the result has more than 99 bytes.
  static orv::String getTime(const char* format);
  // "2 days  03:04:05"; hours are below 24.
  static orv::String convertTimeInSecs(long seconds);

  // Pads the first three fields of a version with zeros to 2, 2 and 3 characters: 9.2.3 becomes
  // 09.02.003. Empty and longer fields stay as they are.
  static void formatEngVerString(orv::String& version);
};
