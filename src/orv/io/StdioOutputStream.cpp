#include "orv/io/StdioOutputStream.h"

#include <unistd.h>

#include "orv/io/FileDescriptor.h"

namespace orv::io {

StdioOutputStream::StdioOutputStream() : StdioOutputStream(STDOUT_FILENO, "standard output") {}

StdioOutputStream::StdioOutputStream(int descriptor, const char* name)
    : descriptor_(descriptor), name_(name) {}

Reference<StdioOutputStream> StdioOutputStream::getStdErrorStream() {
  return makeReference<StdioOutputStream>(STDERR_FILENO, "standard error");
}

void StdioOutputStream::write(std::string_view bytes) { writeFully(descriptor_, bytes, name_); }

}  // namespace orv::io
