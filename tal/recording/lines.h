// The lines of a recording on disk.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tal/recording/reader.h"
#include "tal/regular_file.h"

namespace tal::recording {

struct Line {
  std::string_view text;     // without its line end, followed by kPadding bytes
  std::uint64_t number = 0;  // from 1
  // Where it begins: the byte of the file. Of a compressed file it is the frame's.
  std::uint64_t at = 0;
  const char* damage = nullptr;  // why the text is not given
};

// Where a file's bytes come from: the disk, or what decompresses them.
class ByteSource {
 public:
  enum class Got { kBytes, kNothing, kDamage };
  struct Slice {
    Got got = Got::kNothing;
    std::size_t length = 0;
    std::uint64_t at = 0;  // the byte of the file that the slice, or the damage, begins at
  };

  ByteSource() = default;
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;
  virtual ~ByteSource() = default;

  // Fills the front of `bytes`. kNothing: there is no more at present. kDamage: what follows cannot
  // be decompressed and was passed over. Throws FileError.
  virtual Slice read(std::span<char> bytes) = 0;

  // Where the present frame begins; nothing where the bytes of the file are given as they are.
  [[nodiscard]] virtual std::optional<std::uint64_t> frame() const = 0;
};

// The bytes of a file, decompressed where its name ends in ".zst". Throws FileError.
std::unique_ptr<ByteSource> openBytes(const std::string& path);

// Gives one line after the other. It holds the present line in memory and nothing else of the file,
// and no line that cannot be a moment.
class RecordingLines {
 public:
  // Throws FileError.
  explicit RecordingLines(const std::string& path);

  // The next line; its text is valid until the next call. False where no further whole line is
  // there: a file that is still being written may have one later. Throws FileError.
  bool next(Line& line);

  // How many bytes of the file the lines given so far take up.
  [[nodiscard]] std::uint64_t length() const { return bytes_->frame().value_or(lineAt_); }

 private:
  [[nodiscard]] bool takeLine(Line& line);
  void dropUnfit();
  void makeRoom();
  void add(const ByteSource::Slice& slice);
  void give(Line& line, std::string_view text);

  std::unique_ptr<ByteSource> bytes_;
  std::vector<char> buffer_;
  std::size_t begin_ = 0;         // of what the buffer holds of the present line
  std::size_t scanned_ = 0;       // no line end stands in front of it
  std::size_t end_ = 0;           // of what was read
  std::uint64_t sliceAt_ = 0;     // the byte of the file that the last slice began at
  std::uint64_t readTo_ = 0;      // how many bytes of the file were read
  std::uint64_t lineAt_ = 0;      // where the present line begins in the file
  std::uint64_t count_ = 0;       // lines that were given
  const char* damage_ = nullptr;  // of the present line, whose text was dropped
};

// The moments of a recording, one after the other.
class RecordingReader {
 public:
  // What becomes of a damaged line: "FILE:LINE (byte N): reason".
  using OnDamage = void (*)(const std::string& complaint);

  // Throws FileError.
  RecordingReader(const std::string& path, OnDamage onDamage);

  // The next whole moment; false where there is none at present. Throws FileError.
  bool next(Moment& moment);

  // The same for the first moment at or after a time; those in front of it are not read whole.
  bool nextFrom(std::int64_t time, Moment& moment);

 private:
  template <typename Fits>
  bool nextWhere(const Fits& fits, Moment& moment);

  std::string path_;
  OnDamage onDamage_;
  RecordingLines lines_;
  MomentReader moments_;
};

}  // namespace tal::recording
