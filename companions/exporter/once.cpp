#include "companions/exporter/once.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "companions/exporter/text_format.h"

namespace exporter {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void failToWrite(const std::string& name) {
  throw std::system_error(errno, std::generic_category(), name + " cannot be written");
}

void print(const std::string& text) {
  if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0) {
    failToWrite("standard output");
  }
}

void replace(const std::string& name, const std::string& text) {
  const std::string temporary = name + '.' + std::to_string(getpid());
  std::ofstream file(temporary, std::ios::binary);
  if (!(file << text).flush()) {
    const int reason = errno;
    std::remove(temporary.c_str());
    errno = reason;
    failToWrite(name);
  }
  file.close();
  fs::rename(temporary, name);
}

}  // namespace

void writeOnce(const Options& options, const Targets& targets) {
  if (targets.size() != 1) throw companions::WrongCommandLine("--once goes with one target");
  const Metrics metrics = scraped(*targets.front(), Clock::now() + scrapeLimit(""), options.files);
  const std::string text = serialized(metrics, Format::kText);
  if (options.output.empty()) {
    print(text);
  } else {
    replace(options.output, text);
  }
}

}  // namespace exporter
