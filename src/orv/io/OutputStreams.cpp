#include "orv/io/OutputStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "orv/Exception.h"
#include "orv/io/FileDescriptor.h"

namespace orv::io {

namespace {

constexpr mode_t kPermissions = 0666;

int openForWriting(const String& path, bool append) {
  const int flags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | (append ? 0 : O_TRUNC);
  const int descriptor = ::open(path.toBytes().c_str(), flags, kPermissions);
  if (descriptor < 0) throw ResultException(resultOfErrno(errno));
  return descriptor;
}

}  // namespace

FileOutputStream::FileOutputStream(const String& path, bool append)
    : path_(path), file_(openForWriting(path, append)) {}

void FileOutputStream::write(std::string_view bytes) { writeFully(file_.get(), bytes, path_); }

void FileOutputStream::close() {
  const int error = file_.close();
  if (error != 0) throwWriteError(path_, error);
}

StdioOutputStream::StdioOutputStream() : StdioOutputStream(STDOUT_FILENO, kStandardOutput) {}

StdioOutputStream::StdioOutputStream(int descriptor, const char* name)
    : descriptor_(descriptor), name_(name) {}

Reference<StdioOutputStream> StdioOutputStream::getStdErrorStream() {
  return makeReference<StdioOutputStream>(STDERR_FILENO, kStandardError);
}

void StdioOutputStream::write(std::string_view bytes) { writeFully(descriptor_, bytes, name_); }

}  // namespace orv::io
