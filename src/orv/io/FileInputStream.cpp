#include "orv/io/FileInputStream.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>

#include "orv/Exception.h"

namespace orv::io {
namespace {

int openForReading(const String& path) {
  const int descriptor = ::open(path.toBytes().c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) throw ResultException(resultOfErrno(errno));
  return descriptor;
}

}  // namespace

FileInputStream::FileInputStream(const String& path) : file_(openForReading(path)) {
  struct stat status {};
  if (fstat(file_.get(), &status) == 0 && S_ISDIR(status.st_mode)) {
    throw ResultException(resultOfErrno(EISDIR));
  }
}

std::size_t FileInputStream::read(char* buffer, std::size_t size) {
  return readSome(file_.get(), buffer, size);
}

}  // namespace orv::io
