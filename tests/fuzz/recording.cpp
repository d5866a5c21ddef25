// Recordings, plain and compressed, and what is written of the moments in them.
#include <string>
#include <string_view>

#include "tal/recording/lines.h"
#include "tal/recording/writer.h"
#include "tests/fuzz/served.h"
#include "tests/fuzz/target.h"
#include "tests/support/temporary_folder.h"

namespace fuzzing {
namespace {

using namespace tal::recording;

void checkComplaint(const std::string& complaint) {
  require(complaint.find("): damaged: ") != std::string::npos, "a complaint says where");
  requireClean(complaint.substr(complaint.find("): damaged: ")));
}

std::string lineOf(const Moment& moment) {
  std::string line;
  appendLine(line, moment);
  return line;
}

// What is written of a moment is read as that moment.
void checkWritten(const Moment& moment) {
  const std::string line = lineOf(moment);
  const std::string padded = line + std::string(kPadding, '{');
  const Moment again = MomentReader().read(std::string_view(padded).substr(0, line.size() - 1));
  require(lineOf(again) == line, "a moment is read as it was written");
}

void readAll(const std::string& path) {
  RecordingReader reader(path, checkComplaint);
  for (Moment moment; reader.next(moment);) checkWritten(moment);
  Moment moment;
  RecordingReader(path, checkComplaint).nextFrom(1'700'000'000'000'000, moment);
}

}  // namespace

void run(std::string_view input) {
  static const testing_support::TemporaryFolder folder;
  for (const char* const name : {"r.ndjson", "r.zst"}) {
    testing_support::writeFile(folder / name, input);
    readAll((folder / name).string());
  }
}

}  // namespace fuzzing
