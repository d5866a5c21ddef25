#include "orv/io/InputStreamReader.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "orv/Encoding.h"

namespace orv::io {
namespace {

constexpr wchar_t kByteOrderMark = 0xFEFF;

}  // namespace

InputStreamReader::InputStreamReader(Reference<InputStream> stream, std::size_t bufferSize)
    : stream_(std::move(stream)), buffer_(bufferSize) {}

void InputStreamReader::read(std::wstring& text) {
  text.clear();
  bool isAtEnd = false;
  while (text.empty() && !isAtEnd) {
    const std::size_t count = stream_->read(buffer_.data() + pending_, buffer_.size() - pending_);
    isAtEnd = count == 0;
    const std::string_view bytes(buffer_.data(), pending_ + count);
    const std::size_t used = decodeUtf8(bytes, isAtEnd, text);
    pending_ = bytes.size() - used;
    std::copy_n(bytes.end() - static_cast<std::ptrdiff_t>(pending_), pending_, buffer_.begin());
    if (isAtStart_ && !text.empty()) {
      isAtStart_ = false;
      if (text.front() == kByteOrderMark) text.erase(0, 1);
    }
  }
}

}  // namespace orv::io
