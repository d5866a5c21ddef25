// One file of a recording, while it is written.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace companions::record {

// A file cannot be written or must not be written; what() names it and says what to do.
class FileFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The disk has no room for a moment. No part of the moment stays in the file. what() names the
// file.
class DiskFull : public FileFailure {
 public:
  using FileFailure::FileFailure;
};

// A file that always holds whole moments only. It is locked against other recorders.
class RecordingFile {
 public:
  // Creates the file, readable by its owner only, or continues it: bytes after its last whole
  // moment are removed. Throws DiskFull and FileFailure. FileFailure also stands for a file that
  // another recorder writes, that is not a recording, or whose last moment is of another server.
  RecordingFile(const std::string& name, const std::string& server);
  RecordingFile(const RecordingFile&) = delete;
  RecordingFile& operator=(const RecordingFile&) = delete;
  ~RecordingFile();

  [[nodiscard]] const std::string& name() const { return name_; }

  // Appends a part of a moment. Throws DiskFull and FileFailure; then abandon the moment.
  void append(std::string_view bytes);

  // The moment is complete.
  void finishMoment() noexcept { written_ = 0; }

  // Removes the part that was written of a moment that cannot be completed. Throws FileFailure.
  void abandonMoment();

  // Waits until all bytes have reached the disk. Throws FileFailure.
  void sync();

 private:
  void lock();
  void continueAfter(const std::string& server);
  [[noreturn]] void fail(const std::string& what, int error) const;

  std::string name_;
  int descriptor_;
  std::uint64_t written_ = 0;  // bytes of the present moment
};

}  // namespace companions::record
