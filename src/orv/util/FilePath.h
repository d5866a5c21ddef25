// Names of files and folders.
#pragma once

#include "orv/String.h"

namespace orv::util {

class FilePath {
 public:
  FilePath() = delete;

  static constexpr wchar_t dirDelim = L'/';

  // Ends with the delimiter. Throws ResultException if the folder has no name any more.
  static String getCurrentDir();

  // The folder that holds the running program, without a delimiter at the end. Throws
  // ResultException if the system does not tell.
  static String getProgramDir();
};

}  // namespace orv::util
