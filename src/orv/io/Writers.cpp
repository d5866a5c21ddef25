#include "orv/io/Writers.h"

#include "orv/Encoding.h"

namespace orv::io {

OutputStreamWriter::OutputStreamWriter(Reference<OutputStream> stream, std::size_t bufferSize)
    : stream_(std::move(stream)),
      capacity_(bufferSize * kMaximumBytesPerCharacter),
      buffer_(std::make_unique<char[]>(capacity_)) {}

std::string_view OutputStreamWriter::writeUntilItFits(std::string_view text) {
  while (text.size() > capacity_ - used_) {
    const std::string_view fitting = text.substr(0, capacity_ - used_);
    const std::size_t part = lengthOfWholeCharacters(fitting);
    write(text.substr(0, part));
    text.remove_prefix(part);
    flush();
  }
  return text;
}

void OutputStreamWriter::flush() {
  if (used_ > 0) stream_->write(std::string_view(buffer_.get(), used_));
  used_ = 0;
}

}  // namespace orv::io
