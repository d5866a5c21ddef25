#include "companions/record/output.h"

#include <sys/statvfs.h>
#include <unistd.h>
#include <zstd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <new>
#include <system_error>
#include <utility>

#include "tal/recording/writer.h"

namespace companions::record {
namespace {

void say(const std::string& text) { std::fprintf(stderr, "%s: %s\n", kProgram.name, text.c_str()); }

// Takes back the last bytes that were written, where standard output is a file.
void takeBack(off_t written) {
  const off_t end = ::lseek(STDOUT_FILENO, 0, SEEK_CUR);
  if (written > 0 && end >= written) {
    [[maybe_unused]] const int result = ::ftruncate(STDOUT_FILENO, end - written);
  }
}

void writeToStandardOutput(std::string_view bytes) {
  std::size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t count = ::write(STDOUT_FILENO, bytes.data() + written, bytes.size() - written);
    if (count >= 0) {
      written += static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      const int error = errno;
      takeBack(static_cast<off_t>(written));
      throw std::system_error(error, std::generic_category(), "standard output");
    }
  }
}

}  // namespace

// A frame for each moment.
struct Output::Compressor {
  Compressor() {
    if (context == nullptr) throw std::bad_alloc();
    ZSTD_CCtx_setParameter(context.get(), ZSTD_c_checksumFlag, 1);
  }

  std::string_view frameOf(std::string_view bytes) {
    frame.resize(ZSTD_compressBound(bytes.size()));
    const std::size_t length =
        ZSTD_compress2(context.get(), frame.data(), frame.size(), bytes.data(), bytes.size());
    if (ZSTD_isError(length) != 0) throw std::bad_alloc();
    return {frame.data(), length};
  }

  struct Free {
    void operator()(ZSTD_CCtx* each) const noexcept { ZSTD_freeCCtx(each); }
  };
  std::unique_ptr<ZSTD_CCtx, Free> context{ZSTD_createCCtx()};
  std::string frame;
};

Output::Output(const Options& options, std::string server, bool sync)
    : options_(options),
      server_(std::move(server)),
      sync_(sync),
      names_(options.output, options.utc),
      compressor_(options.output.ends_with(".zst") ? std::make_unique<Compressor>() : nullptr) {}

Output::~Output() = default;

void Output::open(std::int64_t wallTime) {
  if (options_.output.empty()) return;
  const std::string name = names_.at(wallTime);
  if (file_ && file_->name() == name) return;
  file_.reset();
  file_.emplace(name, server_);
  if (options_.keep > 0) removeOldest();
}

bool Output::write(const tal::recording::Moment& moment) {
  line_.clear();
  tal::recording::appendLine(line_, moment);
  const std::string_view bytes = compressor_ ? compressor_->frameOf(line_) : line_;
  if (options_.output.empty()) {
    writeToStandardOutput(bytes);
  } else if (!writeToFile(moment.heading.time, bytes)) {
    return false;
  }
  bytes_ += bytes.size();
  return true;
}

bool Output::writeToFile(std::int64_t wallTime, std::string_view bytes) {
  try {
    open(wallTime);
    if (!hasRoom(file_->name())) return pause("the disk has less room than --leave-free wants");
    file_->append(bytes);
  } catch (const DiskFull& failure) {
    return pause(failure.what());
  }
  if (sync_) file_->sync();
  if (std::exchange(isPaused_, false)) say("recording again");
  return true;
}

bool Output::hasRoom(const std::string& name) const {
  if (options_.leaveFree == 0) return true;
  struct statvfs disk {};
  if (::statvfs(FileNames::folderOf(name).c_str(), &disk) != 0) return true;
  return std::uint64_t{disk.f_bavail} * disk.f_frsize >= options_.leaveFree;
}

// All but the newest of the files, as many as are to be kept.
void Output::removeOldest() const {
  const std::vector<std::string> names = names_.existing();
  for (std::size_t at = 0; at + options_.keep < names.size(); ++at) {
    if (names[at] == file_->name()) continue;
    std::error_code error;
    std::filesystem::remove(names[at], error);
    if (error) say(names[at] + " cannot be removed: " + error.message());
  }
}

bool Output::pause(const std::string& why) {
  if (options_.keep > 0 && file_) removeOldest();
  if (!std::exchange(isPaused_, true)) say(why + "; recording pauses until there is room");
  return false;
}

}  // namespace companions::record
