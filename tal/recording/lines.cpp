#include "tal/recording/lines.h"

#include <algorithm>
#include <cstring>

#include "tal/recording/text.h"
#include "tal/recording/writer.h"
#include "tal/text.h"

namespace tal::recording {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18U;  // bytes read at once

constexpr const char* kTooLong = "the line is longer than 1 GiB";
constexpr const char* kNoObject = "the line does not begin with \"{\"";
constexpr const char* kNotCompressed = "the compressed frame is damaged";

// The time in the heading of a line; nothing if only reading the whole line can give it.
std::optional<std::int64_t> headingTime(std::string_view line) {
  constexpr std::string_view kBefore = "\"time\":\"";
  line = line.substr(0, kHeadingLimit);
  const std::size_t found = line.find(kBefore);
  if (found == std::string_view::npos) return std::nullopt;
  line.remove_prefix(found + kBefore.size());
  return timeOf(line.substr(0, line.find('"')));
}

}  // namespace

RecordingLines::RecordingLines(const std::string& path) : bytes_(openBytes(path)) {}

bool RecordingLines::next(Line& line) {
  while (!takeLine(line)) {
    dropUnfit();
    makeRoom();
    const std::span<char> room(buffer_.data() + end_, buffer_.size() - kPadding - end_);
    const ByteSource::Slice slice = bytes_->read(room.first(std::min(room.size(), kBlock)));
    if (slice.got == ByteSource::Got::kNothing) return false;
    add(slice);
    if (slice.got == ByteSource::Got::kDamage) {
      give(line, {});
      return true;
    }
  }
  return true;
}

void RecordingLines::add(const ByteSource::Slice& slice) {
  const bool isBetweenLines = begin_ == end_ && damage_ == nullptr;
  sliceAt_ = slice.at;
  end_ += slice.length;
  readTo_ = slice.at + slice.length;
  if (isBetweenLines) lineAt_ = slice.at;
  if (slice.got != ByteSource::Got::kDamage) return;
  lineAt_ = slice.at;
  damage_ = kNotCompressed;
  begin_ = scanned_ = end_;
}

bool RecordingLines::takeLine(Line& line) {
  const void* const found =
      end_ == scanned_ ? nullptr : std::memchr(buffer_.data() + scanned_, '\n', end_ - scanned_);
  if (found == nullptr) {
    scanned_ = end_;
    return false;
  }
  const auto lineEnd = static_cast<std::size_t>(static_cast<const char*>(found) - buffer_.data());
  const std::string_view text(buffer_.data() + begin_, lineEnd - begin_);
  begin_ = scanned_ = lineEnd + 1;
  give(line, text);
  return true;
}

// Drops the bytes of the present line if it cannot be a moment.
void RecordingLines::dropUnfit() {
  if (end_ - begin_ > kLineLimit) damage_ = kTooLong;
  if (begin_ != end_ && damage_ == nullptr && buffer_[begin_] != '{') damage_ = kNoObject;
  if (damage_ != nullptr) begin_ = scanned_ = end_;
}

void RecordingLines::makeRoom() {
  std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_),
            buffer_.begin() + static_cast<std::ptrdiff_t>(end_), buffer_.begin());
  scanned_ -= begin_;
  end_ -= begin_;
  begin_ = 0;
  // Doubles the size of the line, so that a long line is not copied many times.
  const std::size_t wanted = end_ + std::max(kBlock, end_) + kPadding;
  if (buffer_.size() < end_ + kBlock + kPadding) buffer_.resize(wanted);
}

void RecordingLines::give(Line& line, std::string_view text) {
  line = {damage_ == nullptr ? text : std::string_view(), ++count_, lineAt_, damage_};
  damage_ = nullptr;
  lineAt_ = bytes_->frame() ? sliceAt_ : readTo_ - (end_ - begin_);
}

RecordingReader::RecordingReader(const std::string& path, OnDamage onDamage)
    : path_(path), onDamage_(onDamage), lines_(path) {}

template <typename Fits>
bool RecordingReader::nextWhere(const Fits& fits, Moment& moment) {
  Line line;
  while (lines_.next(line)) {
    try {
      if (line.damage != nullptr) throw Damaged(line.damage);
      if (!fits(headingTime(line.text))) continue;
      moment = moments_.read(line.text);
      if (fits(moment.heading.time)) return true;
    } catch (const Damaged& damaged) {
      onDamage_(path_ + ":" + std::to_string(line.number) + " (byte " + std::to_string(line.at) +
                "): damaged: " + damaged.what());
    }
  }
  return false;
}

bool RecordingReader::next(Moment& moment) {
  return nextWhere([](const std::optional<std::int64_t>&) { return true; }, moment);
}

bool RecordingReader::nextFrom(std::int64_t time, Moment& moment) {
  return nextWhere(
      [time](const std::optional<std::int64_t>& at) { return at.value_or(time) >= time; }, moment);
}

}  // namespace tal::recording
