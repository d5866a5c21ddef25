#include "tal/recording/lines.h"

#include <zstd.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "tal/recording/text.h"
#include "tal/recording/writer.h"
#include "tal/text.h"

namespace tal::recording {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18U;  // bytes read at once

constexpr const char* kTooLong = "the line is longer than 1 GiB";
constexpr const char* kNoObject = "the line does not begin with \"{\"";
constexpr const char* kNotCompressed = "the compressed frame is damaged";

class PlainBytes : public ByteSource {
 public:
  explicit PlainBytes(const std::string& path) : file_(path) {}

  Slice read(std::span<char> bytes) override {
    const std::size_t length = file_.readAt(at_, bytes);
    const std::uint64_t at = at_;
    at_ += length;
    return {length == 0 ? Got::kNothing : Got::kBytes, length, at};
  }

  [[nodiscard]] std::optional<std::uint64_t> frame() const override { return std::nullopt; }

 private:
  RegularFile file_;
  std::uint64_t at_ = 0;
};

class ZstdBytes : public ByteSource {
 public:
  explicit ZstdBytes(const std::string& path)
      : file_(path), stream_(ZSTD_createDStream()), input_(ZSTD_DStreamInSize()) {
    if (stream_ == nullptr) throw std::bad_alloc();
  }

  Slice read(std::span<char> bytes) override {
    while (true) {
      ZSTD_inBuffer in{input_.data(), inputLength_, inputUsed_};
      ZSTD_outBuffer out{bytes.data(), bytes.size(), 0};
      const std::size_t left = ZSTD_decompressStream(stream_.get(), &out, &in);
      if (ZSTD_isError(left) != 0) return passDamage();
      inputUsed_ = in.pos;
      const std::uint64_t frame = frameAt_;
      if (left == 0) frameAt_ = inputAt_ + inputUsed_;
      if (out.pos > 0) return {Got::kBytes, out.pos, frame};
      if (inputUsed_ == inputLength_ && !fill(inputAt_ + inputLength_)) return {};
    }
  }

  [[nodiscard]] std::optional<std::uint64_t> frame() const override { return frameAt_; }

 private:
  struct Free {
    void operator()(ZSTD_DStream* stream) const noexcept { ZSTD_freeDStream(stream); }
  };

  // Reads the compressed bytes from that place on; false if there are none.
  bool fill(std::uint64_t at) {
    inputAt_ = at;
    inputUsed_ = 0;
    inputLength_ = file_.readAt(at, input_);
    return inputLength_ > 0;
  }

  // Continues at the next frame.
  Slice passDamage() {
    constexpr std::string_view kMagic = "\x28\xb5\x2f\xfd";
    const std::uint64_t damagedAt = frameAt_;
    ZSTD_DCtx_reset(stream_.get(), ZSTD_reset_session_only);
    std::uint64_t at = frameAt_ + 1;
    while (fill(at)) {
      const std::size_t found = std::string_view(input_.data(), inputLength_).find(kMagic);
      if (found != std::string_view::npos) {
        at += found;
        break;
      }
      // The magic number may lie across the end of what was read.
      at += std::max<std::size_t>(inputLength_, kMagic.size()) - (kMagic.size() - 1);
    }
    frameAt_ = at;
    fill(at);
    return {Got::kDamage, 0, damagedAt};
  }

  RegularFile file_;
  std::unique_ptr<ZSTD_DStream, Free> stream_;
  std::vector<char> input_;
  std::uint64_t inputAt_ = 0;  // the byte of the file that `input_` begins with
  std::size_t inputLength_ = 0;
  std::size_t inputUsed_ = 0;
  std::uint64_t frameAt_ = 0;  // where the present frame begins
};

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

std::unique_ptr<ByteSource> openBytes(const std::string& path) {
  if (path.ends_with(".zst")) return std::make_unique<ZstdBytes>(path);
  return std::make_unique<PlainBytes>(path);
}

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
