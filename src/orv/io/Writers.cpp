#include "orv/io/Writers.h"

#include <cstdint>
#include <string_view>
#include <utility>

#include "orv/Encoding.h"

namespace orv::io {

namespace {

constexpr std::size_t kBlock = 16;

constexpr bool isAscii(wchar_t character) noexcept {
  return static_cast<std::uint32_t>(character) < 0x80;
}

// Characters below 0x80 are bytes of the same number. Copies those at the start of the text, a
// block at a time, and returns how many; `out` has room for all of the text.
std::size_t copyAsciiBlocks(std::wstring_view text, char* out) noexcept {
  std::size_t copied = 0;
  while (text.size() - copied >= kBlock) {
    const std::wstring_view block = text.substr(copied, kBlock);
    std::uint32_t seen = 0;
    for (const wchar_t character : block) seen |= static_cast<std::uint32_t>(character);
    if (seen >= 0x80) break;
    for (std::size_t i = 0; i < kBlock; ++i) out[copied + i] = static_cast<char>(block[i]);
    copied += kBlock;
  }
  return copied;
}

// Encodes all of the text; `out` has room for it in the longest form. Returns the bytes written.
std::size_t encode(std::wstring_view text, char* out) noexcept {
  std::size_t at = copyAsciiBlocks(text, out);
  std::size_t used = at;
  for (; at < text.size(); ++at) {
    const wchar_t character = text[at];
    if (isAscii(character)) {
      out[used++] = static_cast<char>(character);
    } else {
      used += encodeUtf8(character, out + used);
    }
  }
  return used;
}

}  // namespace

OutputStreamWriter::OutputStreamWriter(Reference<OutputStream> stream, std::size_t bufferSize)
    : stream_(std::move(stream)),
      capacity_(bufferSize * kMaximumBytesPerCharacter),
      buffer_(std::make_unique<char[]>(capacity_)) {}

void OutputStreamWriter::write(const String& text) {
  std::wstring_view rest = text.wide();
  while (!rest.empty()) {
    if (capacity_ - used_ < kMaximumBytesPerCharacter) flush();
    const std::size_t room = (capacity_ - used_) / kMaximumBytesPerCharacter;
    const std::wstring_view part = rest.substr(0, room);
    used_ += encode(part, buffer_.get() + used_);
    rest.remove_prefix(part.size());
  }
}

void OutputStreamWriter::write(wchar_t character) {
  if (capacity_ - used_ < kMaximumBytesPerCharacter) flush();
  used_ += encodeUtf8(character, buffer_.get() + used_);
}

void OutputStreamWriter::flush() {
  if (used_ > 0) stream_->write(std::string_view(buffer_.get(), used_));
  used_ = 0;
}

void PrintWriter::println(const String& text) {
  writer_->write(text);
  writer_->write(L'\n');
  if (autoFlush_) flush();
}

}  // namespace orv::io
