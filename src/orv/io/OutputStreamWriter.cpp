#include "orv/io/OutputStreamWriter.h"

#include <string_view>
#include <utility>

#include "orv/Encoding.h"

namespace orv::io {
namespace {

constexpr wchar_t kFirstNonAscii = 0x80;

}  // namespace

OutputStreamWriter::OutputStreamWriter(Reference<OutputStream> stream, std::size_t bufferSize)
    : stream_(std::move(stream)),
      capacity_(bufferSize * kMaximumBytesPerCharacter),
      buffer_(std::make_unique<char[]>(capacity_)) {}

void OutputStreamWriter::write(const String& text) {
  for (const wchar_t character : text.wide()) {
    if (capacity_ - used_ < kMaximumBytesPerCharacter) flush();
    if (character >= 0 && character < kFirstNonAscii) {
      buffer_[used_++] = static_cast<char>(character);
    } else {
      used_ += encodeUtf8(character, buffer_.get() + used_);
    }
  }
}

void OutputStreamWriter::flush() {
  if (used_ > 0) stream_->write(std::string_view(buffer_.get(), std::exchange(used_, 0)));
}

}  // namespace orv::io
