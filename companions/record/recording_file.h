// One file of a recording, while it is written.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace companions::record {

// A file cannot be written, or must not be; what() names it and says what to do.
class FileFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The disk has no room for a moment; nothing of it stays in the file. what() names the file.
class DiskFull : public FileFailure {
 public:
  using FileFailure::FileFailure;
};

// A file that holds whole moments at any time, locked against other recorders.
class RecordingFile {
 public:
  // Makes the file, readable by its owner alone, or continues it: what stands behind its last whole
  // moment is cut off. Throws DiskFull, and FileFailure, also for a file that another recorder
  // writes, that holds something else, or whose last moment is of another server.
  RecordingFile(const std::string& name, const std::string& server);
  RecordingFile(const RecordingFile&) = delete;
  RecordingFile& operator=(const RecordingFile&) = delete;
  ~RecordingFile();

  [[nodiscard]] const std::string& name() const { return name_; }

  // Appends a part of a moment. Throws DiskFull and FileFailure: the moment is to be abandoned
  // then.
  void append(std::string_view bytes);

  // The moment is complete.
  void finishMoment() noexcept { written_ = 0; }

  // Takes back what was written of a moment that cannot be completed. Throws FileFailure.
  void abandonMoment();

  // Waits until everything has reached the disk. Throws FileFailure.
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
