#include "companions/exporter/options.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "companions/exporter/text_format.h"

namespace exporter {
namespace {

using companions::WrongCommandLine;
namespace fs = std::filesystem;

constexpr long long kMostFiles = 1000;

enum Code : int { kListen = 256, kOnce, kFiles, kWebConfig, kInsecure, kOneAtATime };

constexpr companions::Option kOptions[] = {
    {'f',         "file",            true },
    {kListen,     "listen",          true },
    {kOnce,       "once",            false},
    {'o',         "output",          true },
    {kFiles,      "most-waited-for", true },
    {kWebConfig,  "web-config",      true },
    {kInsecure,   "insecure",        false},
    {kOneAtATime, "one-at-a-time",   false},
};

void take(Options& options, int code, const std::string& value) {
  switch (code) {
    case 'f':
      options.configurations.push_back(value);
      break;
    case 'o':
      options.output = value;
      break;
    case kListen:
      options.listen = value;
      break;
    case kWebConfig:
      options.webConfig = value;
      break;
    case kOnce:
      options.once = true;
      break;
    case kInsecure:
      options.insecure = true;
      break;
    case kOneAtATime:
      options.oneAtATime = true;
      break;
    default:
      options.files = static_cast<std::size_t>(
          companions::wholeNumber("--most-waited-for", value, 0, kMostFiles));
  }
}

void check(const Options& options, const std::vector<std::string>& others) {
  if (!others.empty()) throw WrongCommandLine("unknown argument " + others.front());
  if (options.configurations.empty()) throw WrongCommandLine("name a configuration with -f FILE");
  if (!options.output.empty() && !options.once) throw WrongCommandLine("-o goes with --once");
}

// The files of a folder that end in ".cfg"; the path itself if it is not a folder.
std::vector<fs::path> filesIn(const fs::path& path) {
  if (!fs::is_directory(path)) return {path};
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(path)) {
    if (entry.path().extension() == ".cfg") files.push_back(entry.path());
  }
  std::ranges::sort(files);
  return files;
}

}  // namespace

const companions::Program kProgram = {"zelk-exporter",
                                      R"(Usage: zelk-exporter -f FILE... [OPTION]...
Serves metrics of database engine servers to Prometheus and what speaks its language.

  -f, --file FILE            a configuration file of zelk, which makes a target of the file's name
                             without folder and extension; a folder stands for all *.cfg in it
      --listen HOST:PORT     where to serve; default 127.0.0.1:10893
      --most-waited-for N    serve the N files that most handles wait for by name; default 0
      --web-config FILE      protect what is served: TLS and users
      --insecure             serve other machines without a --web-config
      --one-at-a-time        for an engine library that cannot serve different threads
      --once                 write the metrics of one moment of the target, and end
  -o, --output FILE          with --once: write to this file, which is replaced as a whole
  -h, --help                 show this
  -V, --version              show the version

zelk-exporter(1) says more.
)"};

std::optional<Options> optionsIn(int argc, char** argv) {
  Options options;
  const auto others = companions::readOptions(
      kProgram, argc, argv, kOptions,
      [&](int code, const std::string& value) { take(options, code, value); });
  if (!others) return std::nullopt;
  check(options, *others);
  return options;
}

std::vector<TargetFile> targetFiles(const std::vector<std::string>& configurations) {
  std::vector<TargetFile> files;
  std::set<std::string> names;
  for (const std::string& configuration : configurations) {
    for (const fs::path& path : filesIn(configuration)) {
      const std::string name = path.stem().string();
      if (validText(name) != name)
        throw WrongCommandLine(path.string() + ": its name is not UTF-8");
      if (!names.insert(name).second) {
        throw WrongCommandLine("two configurations would make a target " + name);
      }
      files.push_back({name, path.string()});
    }
  }
  return files;
}

}  // namespace exporter
