// Where bytes go.
#pragma once

#include <string_view>

#include "orv/Object.h"
#include "orv/String.h"

namespace orv::io {

class OutputStream : public Object {
 public:
  // Hands all bytes to the system, in one call where the system takes them so. Throws IoException.
  virtual void write(std::string_view bytes) = 0;
  // Gives the stream back to the system; a second call does nothing. Throws IoException if the
  // system tells only now that it could not keep all bytes.
  virtual void close() = 0;
};

// What a failed write is called: `target` is the file's path or the stream's name, `reason` the
// system's own words.
using WriteErrorText = String (*)(const String& target, const String& reason);

// The text of the IoException that every later failed write throws. Until it is set, a plain
// English one is used. To be called before a second thread writes.
void setWriteErrorText(WriteErrorText text) noexcept;

}  // namespace orv::io
