// Where bytes go.
#pragma once

#include <string_view>

#include "orv/Object.h"
#include "orv/String.h"
#include "orv/io/FileDescriptor.h"

namespace orv::io {

class OutputStream : public Object {
 public:
  // Hands all bytes to the system, in one call if the system takes them all. Throws IoException.
  virtual void write(std::string_view bytes) = 0;
  // Closes the stream; a second call does nothing. Throws IoException if the system reports only
  // now that it could not store all bytes.
  virtual void close() = 0;
};

// The names that the standard streams have as the target of a WriteErrorText.
inline constexpr const char* kStandardOutput = "standard output";
inline constexpr const char* kStandardError = "standard error";

// The text for a failed write: `target` is the path of the file or the name of the stream, `reason`
// is the text of the system.
using WriteErrorText = String (*)(const String& target, const String& reason);

// The text of the IoException that every later failed write throws. Until it is set, a plain
// English one is used. Call it before a second thread writes.
void setWriteErrorText(WriteErrorText text) noexcept;

// Creates the file for its owner and group, or opens it: emptied unless `append`. Every write goes
// to the end of the file, even if another program has emptied it meanwhile.
class FileOutputStream : public OutputStream {
 public:
  // Throws ResultException if the file cannot be opened, or may have been planted (orv/Files.h).
  explicit FileOutputStream(const String& path, bool append = false);

  void write(std::string_view bytes) override;
  void close() override;

 private:
  String path_;
  FileDescriptor file_;
};

// Standard output, or through getStdErrorStream() standard error. Closing this object leaves the
// stream of the process open.
class StdioOutputStream : public OutputStream {
 public:
  StdioOutputStream();
  static Reference<StdioOutputStream> getStdErrorStream();

  void write(std::string_view bytes) override;
  void close() override {}

 private:
  template <class T, class... Arguments>
  friend Reference<T> orv::makeReference(Arguments&&... arguments);
  StdioOutputStream(int descriptor, const char* name);

  int descriptor_;
  String name_;
};

}  // namespace orv::io
