// The output for the moments: standard output, or the file for the present time.
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
  // Opens nothing yet. `sync`: whether each moment must reach the disk before the next one.
  Output(const Options& options, std::string server, bool sync);
  ~Output();

  // Opens the file for that wall time, so that a file that cannot be written is reported at once.
  // Throws FileFailure.
  void open(std::int64_t wallTime);

  // Writes a moment to the file for its time. Returns false if the disk has no room for it: then
  // nothing was written, and a line on standard error says so the first time. Throws FileFailure
  // and std::system_error.
  bool write(const tal::recording::Moment& moment);

  // Opens the file again for the next moment.
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
