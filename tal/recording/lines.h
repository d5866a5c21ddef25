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
  // The byte of the file at which it begins; in a compressed file, the byte at which its frame
  // begins.
  std::uint64_t at = 0;
  const char* damage = nullptr;  // the reason why there is no text
};

// The source of the bytes of a file: the disk, or a decompressor.
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

  // Fills the front of `bytes`. kNothing: there are no more bytes at present. kDamage: the next
  // part cannot be decompressed and was skipped. Throws FileError.
  virtual Slice read(std::span<char> bytes) = 0;

  // The place where the present frame begins; nothing if the file is not compressed.
  [[nodiscard]] virtual std::optional<std::uint64_t> frame() const = 0;
};

// The bytes of a file, decompressed if its name ends in ".zst". Throws FileError.
std::unique_ptr<ByteSource> openBytes(const std::string& path);

// Gives one line after the other. It holds only the present line of the file in memory, and drops a
// line that cannot be a moment.
class RecordingLines {
 public:
  // Throws FileError.
  explicit RecordingLines(const std::string& path);

  // Gets the next line; its text is valid until the next call. Returns false if there is no further
  // whole line: a file that is still being written may have one later. Throws FileError.
  bool next(Line& line);

  // The number of bytes of the file that the lines so far take.
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
  // Receives a report of each damaged line: "FILE:LINE (byte N): reason".
  using OnDamage = void (*)(const std::string& complaint);

  // Throws FileError.
  RecordingReader(const std::string& path, OnDamage onDamage);

  // Gets the next whole moment; returns false if there is none at present. Throws FileError.
  bool next(Moment& moment);

  // The same for the first moment at or after a time. Earlier moments are not read completely.
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
