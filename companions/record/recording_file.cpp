#include "companions/record/recording_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>
#include <system_error>
#include <utility>

#include "tal/recording/lines.h"
#include "tal/recording/writer.h"

namespace companions::record {
namespace {

using tal::recording::Damaged;
using tal::recording::Line;
using tal::recording::Moment;
using tal::recording::MomentReader;
using tal::recording::RecordingLines;

constexpr mode_t kOwnerOnly = 0600;

std::string reasonOf(int error) { return std::generic_category().message(error); }

// Whether bytes after the last line end can be an unfinished line: a moment that was cut off, or
// the remains of a power cut.
bool isUnfinished(std::string_view bytes) {
  constexpr std::string_view kStart = "{\"zelk_recording\":";
  constexpr std::string_view kFrame = "\x28\xb5\x2f\xfd";
  const auto agrees = [&](std::string_view start) {
    return bytes.substr(0, start.size()) == start.substr(0, bytes.size());
  };
  return bytes.empty() || bytes.front() == '\0' || agrees(kStart) || agrees(kFrame);
}

// What a file already holds.
struct Contents {
  std::uint64_t length = 0;           // of its whole lines, in bytes
  std::optional<std::string> server;  // of the last whole moment
};

Contents contentsOf(const std::string& name) {
  RecordingLines lines(name);
  MomentReader reader;
  Contents contents;
  std::string last;
  std::size_t length = 0;
  for (Line line; lines.next(line);) {
    if (line.damage != nullptr) continue;
    length = line.text.size();
    last.assign(line.text).append(tal::recording::kPadding, '\0');
  }
  contents.length = lines.length();
  if (last.empty()) return contents;
  try {
    contents.server = reader.read(std::string_view(last).substr(0, length)).heading.server;
  } catch (const Damaged&) {
    // The last whole moment begins earlier in the file.
    tal::recording::RecordingReader moments(name, [](const std::string&) {});
    for (Moment moment; moments.next(moment);) contents.server = moment.heading.server;
  }
  return contents;
}

}  // namespace

RecordingFile::RecordingFile(const std::string& name, const std::string& server)
    : name_(name),
      descriptor_(
          ::open(name.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK, kOwnerOnly)) {
  if (descriptor_ < 0) fail("cannot be opened", errno);
  try {
    lock();
    continueAfter(server);
  } catch (const tal::FileError& error) {
    ::close(descriptor_);
    throw FileFailure(name_ + ": " + error.what());
  } catch (...) {
    ::close(descriptor_);
    throw;
  }
}

RecordingFile::~RecordingFile() { ::close(descriptor_); }

void RecordingFile::append(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) fail("cannot be written", errno);
    if (count < 0) continue;
    written_ += static_cast<std::uint64_t>(count);
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

void RecordingFile::abandonMoment() {
  const auto written = static_cast<off_t>(std::exchange(written_, 0));
  if (written == 0) return;
  // The end is looked up now, because somebody may have emptied the file meanwhile.
  struct stat status {};
  if (::fstat(descriptor_, &status) != 0) fail("cannot be read", errno);
  if (status.st_size < written) return;
  if (::ftruncate(descriptor_, status.st_size - written) != 0) {
    fail("cannot be cut back to its last whole moment", errno);
  }
}

void RecordingFile::sync() {
  if (::fdatasync(descriptor_) != 0 && errno != EINVAL && errno != EROFS) {
    fail("cannot be written to the disk", errno);
  }
}

void RecordingFile::lock() {
  struct stat status {};
  if (::fstat(descriptor_, &status) != 0) fail("cannot be read", errno);
  if (!S_ISREG(status.st_mode)) throw FileFailure(name_ + ": is not a regular file");
  if (::flock(descriptor_, LOCK_EX | LOCK_NB) == 0) return;
  if (errno != EWOULDBLOCK) fail("cannot be locked", errno);
  throw FileFailure(name_ + ": another recorder writes this file; give another one with -o");
}

void RecordingFile::continueAfter(const std::string& server) {
  std::array<char, 32> start{};
  const ssize_t count = ::pread(descriptor_, start.data(), start.size(), 0);
  if (count < 0) fail("cannot be read", errno);
  if (count == 0) return;
  const Contents contents = contentsOf(name_);
  if (contents.server && *contents.server != tal::recording::recordableServer(server)) {
    throw FileFailure(name_ + ": holds moments of the server \"" + *contents.server +
                      "\"; give another file with -o");
  }
  const std::string_view bytes(start.data(), static_cast<std::size_t>(count));
  if (!contents.server && (contents.length > 0 || !isUnfinished(bytes))) {
    throw FileFailure(name_ + ": holds no recording; give another file with -o");
  }
  if (::ftruncate(descriptor_, static_cast<off_t>(contents.length)) != 0) {
    fail("cannot be cut back to its last whole moment", errno);
  }
}

void RecordingFile::fail(const std::string& what, int error) const {
  if (error == ENOSPC || error == EDQUOT || error == EFBIG) {
    throw DiskFull(name_ + ": " + reasonOf(error));
  }
  throw FileFailure(name_ + ": " + what + ": " + reasonOf(error));
}

}  // namespace companions::record
