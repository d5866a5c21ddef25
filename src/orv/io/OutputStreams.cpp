#include "orv/io/OutputStreams.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "orv/Exception.h"
#include "orv/Files.h"
#include "orv/io/FileDescriptor.h"

namespace orv::io {

namespace {

constexpr mode_t kPermissions = 0640;

int openForWriting(const String& path) {
  const int flags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC;
  const int descriptor = openToWrite(path, flags, kPermissions);
  if (descriptor < 0) throw ResultException(resultOfErrno(errno));
  return descriptor;
}

// Pipes and devices cannot be emptied.
void empty(int descriptor) {
  struct stat status {};
  const bool isEmptied = fstat(descriptor, &status) == 0 &&
                         (!S_ISREG(status.st_mode) || ftruncate(descriptor, 0) == 0);
  if (!isEmptied) throw ResultException(resultOfErrno(errno));
}

}  // namespace

FileOutputStream::FileOutputStream(const String& path, bool append)
    : path_(path), file_(openForWriting(path)) {
  if (isPlanted(path)) throw ResultException(kAccessDenied);
  if (!append) empty(file_.get());
}

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
