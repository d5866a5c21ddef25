// Files and folders of the operating system, apart from their contents.
#pragma once

#include "orv/Result.h"
#include "orv/String.h"

namespace orv {

struct DirHandle;

// A handle for ORVDirClose, or null if the path cannot be opened as a folder.
DirHandle* ORVDirOpen(const String& path);
void ORVDirClose(DirHandle* handle) noexcept;

// Makes one folder with these permissions, less the process's mask. It is no failure if the folder
// exists already, because another process may have been faster. Returns 0 or a result code.
Result ORVDirCreate(const String& path, unsigned permissions);

// True if a status query on the path succeeds.
bool ORVPathExists(const String& path);

// True if another user may have planted the file that the path names, so that it must not be
// written. This is so if, in a folder that every user can write, the path leads to or through a
// link or a file that belongs neither to this user nor to the owner of the folder, or to a file
// that has a second name: anybody can give one to a file that he cannot write.
bool isPlanted(const String& path);

// Opens a file as open() does, but fails with EACCES if it is planted, even if it is so only while
// it is opened. Returns the descriptor, or -1 and the reason in errno.
int openToWrite(const String& path, int flags, unsigned permissions);

}  // namespace orv

namespace orv::util {

class FilePath {
 public:
  FilePath() = delete;

  static constexpr char dirDelim = '/';

  // Ends with the delimiter. Throws ResultException if the folder no longer has a name.
  static String getCurrentDir();

  // The folder of the running program, without a delimiter at the end. Throws ResultException if
  // the system does not say where the program is.
  static String getProgramDir();
};

}  // namespace orv::util
