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

// Standard output while a moment is written.
class StandardOutput {
 public:
  void put(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t count = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
      if (count >= 0) {
        written_ += count;
        bytes.remove_prefix(static_cast<std::size_t>(count));
      } else if (errno != EINTR) {
        fail(errno);
      }
    }
  }

 private:
  // A file gets no part of a moment.
  [[noreturn]] void fail(int error) const {
    const off_t end = ::lseek(STDOUT_FILENO, 0, SEEK_CUR);
    if (written_ > 0 && end >= written_) {
      [[maybe_unused]] const int result = ::ftruncate(STDOUT_FILENO, end - written_);
    }
    throw std::system_error(error, std::generic_category(), "standard output");
  }

  off_t written_ = 0;
};

}  // namespace

// A frame for each moment.
struct Output::Compressor {
  Compressor() {
    if (context == nullptr) throw std::bad_alloc();
    ZSTD_CCtx_setParameter(context.get(), ZSTD_c_checksumFlag, 1);
  }

  // Compresses a part; the last part of a moment takes ZSTD_e_end.
  void compress(std::string_view part, ZSTD_EndDirective directive, const Put& put) {
    ZSTD_inBuffer in{part.data(), part.size(), 0};
    std::size_t left = 0;
    do {
      ZSTD_outBuffer out{frame.data(), frame.size(), 0};
      left = ZSTD_compressStream2(context.get(), &out, &in, directive);
      if (ZSTD_isError(left) != 0) throw std::bad_alloc();
      put({frame.data(), out.pos});
    } while (in.pos < in.size || (directive == ZSTD_e_end && left > 0));
  }

  // Forgets the part of a moment that was compressed.
  void forget() { ZSTD_CCtx_reset(context.get(), ZSTD_reset_session_only); }

  struct Free {
    void operator()(ZSTD_CCtx* each) const noexcept { ZSTD_freeCCtx(each); }
  };
  std::unique_ptr<ZSTD_CCtx, Free> context{ZSTD_createCCtx()};
  std::string frame = std::string(ZSTD_CStreamOutSize(), '\0');
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
  if (!options_.output.empty()) return writeToFile(moment);
  StandardOutput output;
  writeThrough(moment, [&output](std::string_view bytes) { output.put(bytes); });
  return true;
}

// Counts the bytes that are put.
void Output::writeThrough(const tal::recording::Moment& moment, const Put& put) {
  std::uint64_t count = 0;
  const Put counting = [&](std::string_view bytes) {
    put(bytes);
    count += bytes.size();
  };
  if (compressor_) {
    tal::recording::writeLine(moment, [&](std::string_view part) {
      compressor_->compress(part, ZSTD_e_continue, counting);
    });
    compressor_->compress({}, ZSTD_e_end, counting);
  } else {
    tal::recording::writeLine(moment, counting);
  }
  bytes_ += count;
}

bool Output::writeToFile(const tal::recording::Moment& moment) {
  try {
    open(moment.heading.time);
    if (!hasRoom(file_->name())) return pause("the disk has less room than --leave-free wants");
    writeThrough(moment, [this](std::string_view bytes) { file_->append(bytes); });
    if (sync_) file_->sync();
    file_->finishMoment();
  } catch (const DiskFull& failure) {
    if (compressor_) compressor_->forget();
    if (file_) file_->abandonMoment();
    return pause(failure.what());
  } catch (...) {
    if (file_) file_->abandonMoment();
    throw;
  }
  if (std::exchange(isPaused_, false)) say("recording again");
  return true;
}

bool Output::hasRoom(const std::string& name) const {
  if (options_.leaveFree == 0) return true;
  struct statvfs disk {};
  if (::statvfs(FileNames::folderOf(name).c_str(), &disk) != 0) return true;
  return std::uint64_t{disk.f_bavail} * disk.f_frsize >= options_.leaveFree;
}

// All files except the newest ones, which are kept.
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
