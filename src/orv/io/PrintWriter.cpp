#include "orv/io/PrintWriter.h"

namespace orv::io {

void PrintWriter::println(const String& text) {
  writer_->write(text);
  writer_->write(L'\n');
  if (autoFlush_) flush();
}

}  // namespace orv::io
