// Where the moments go: standard output, or the file whose turn it is.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "companions/record/file_names.h"
#include "companions/record/options.h"
#include "companions/record/recording_file.h"
#include "tal/recording/moment.h"

namespace companions::record {

class Output {
 public:
  // Opens nothing yet. `sync`: whether a moment is to reach the disk before the next.
  Output(const Options& options, std::string server, bool sync);
  ~Output();

  // Opens the file for that wall time, so that what cannot be written is known at once. Throws
  // FileFailure.
  void open(std::int64_t wallTime);

  // Writes a moment to the file for its time. False where there is no room for it: nothing was
  // written then, and a line on standard error says so the first time. Throws FileFailure and
  // std::system_error.
  bool write(const tal::recording::Moment& moment);

  // The file is opened anew for the next moment.
  void reopen() { file_.reset(); }

  [[nodiscard]] std::uint64_t bytes() const { return bytes_; }

 private:
  struct Compressor;

  using Put = std::function<void(std::string_view bytes)>;

  bool writeToFile(const tal::recording::Moment& moment);
  void writeThrough(const tal::recording::Moment& moment, const Put& put);
  [[nodiscard]] bool hasRoom(const std::string& name) const;
  void removeOldest() const;
  bool pause(const std::string& why);

  const Options options_;
  const std::string server_;
  const bool sync_;
  FileNames names_;
  std::optional<RecordingFile> file_;
  std::unique_ptr<Compressor> compressor_;
  std::uint64_t bytes_ = 0;
  bool isPaused_ = false;
};

}  // namespace companions::record
