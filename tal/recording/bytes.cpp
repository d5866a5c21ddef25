#include <zstd.h>

#include <algorithm>
#include <array>
#include <new>
#include <string_view>

#include "tal/recording/lines.h"

namespace tal::recording {
namespace {

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

}  // namespace

std::unique_ptr<ByteSource> openBytes(const std::string& path) {
  if (path.ends_with(".zst")) return std::make_unique<ZstdBytes>(path);
  return std::make_unique<PlainBytes>(path);
}

}  // namespace tal::recording
