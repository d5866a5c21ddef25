#include "orv/io/Readers.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

#include "orv/Encoding.h"

namespace orv::io {

namespace {

constexpr wchar_t kByteOrderMark = 0xFEFF;

}  // namespace

InputStreamReader::InputStreamReader(Reference<InputStream> stream, std::size_t bufferSize)
    : stream_(std::move(stream)), buffer_(bufferSize) {}

InputStreamReader::~InputStreamReader() { explicit_bzero(buffer_.data(), buffer_.size()); }

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

BufferedReader::BufferedReader(Reference<InputStreamReader> reader, std::size_t longestLine)
    : reader_(std::move(reader)), longestLine_(longestLine) {}

BufferedReader::~BufferedReader() {
  buffer_.resize(buffer_.capacity());  // earlier text lies behind the present one
  explicit_bzero(buffer_.data(), buffer_.size() * sizeof(wchar_t));
}

bool BufferedReader::readLine(String& line) {
  if (isLineCut_) skipRestOfLine();
  if (!fill()) return false;
  std::wstring text;
  while (fill()) {
    const std::size_t room = longestLine_ - text.size();
    const std::size_t end = std::min(buffer_.find(L'\n', next_), buffer_.size());
    const std::size_t count = std::min(end - next_, room);
    text.append(buffer_, next_, count);
    next_ += count;
    if (next_ == end && end < buffer_.size()) {
      ++next_;
      break;
    }
    if (text.size() == longestLine_) {
      isLineCut_ = fill() && buffer_[next_] != L'\n';
      if (!isLineCut_) ++next_;
      break;
    }
  }
  line = String(text);
  return true;
}

bool BufferedReader::restOfLineHas(wchar_t character) {
  while (isLineCut_ && fill()) {
    const std::size_t end = buffer_.find(L'\n', next_);
    const std::wstring_view part = std::wstring_view(buffer_).substr(next_, end - next_);
    if (part.find(character) != std::wstring_view::npos) return true;
    next_ = end == std::wstring::npos ? buffer_.size() : end + 1;
    isLineCut_ = end == std::wstring::npos && fill();
  }
  return false;
}

bool BufferedReader::fill() {
  if (next_ >= buffer_.size()) {
    reader_->read(buffer_);
    next_ = 0;
  }
  return !buffer_.empty();
}

void BufferedReader::skipRestOfLine() {
  isLineCut_ = false;
  while (fill()) {
    const std::size_t end = buffer_.find(L'\n', next_);
    next_ = end == std::wstring::npos ? buffer_.size() : end + 1;
    if (end != std::wstring::npos) break;
  }
}

}  // namespace orv::io
