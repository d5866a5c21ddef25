// The command line of the exporter.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "companions/shared/command_line.h"

namespace exporter {

extern const companions::Program kProgram;

struct Options {
  std::vector<std::string> configurations;  // files and folders
  std::string listen = "127.0.0.1:10893";
  std::string webConfig;  // empty if none is named
  std::string output;     // of --once; empty for standard output
  std::size_t files = 0;  // how many files are served by name
  bool once = false;
  bool insecure = false;
  bool oneAtATime = false;
};

// Nothing if --help or --version was given, which is then printed. Throws
// companions::WrongCommandLine.
[[nodiscard]] std::optional<Options> optionsIn(int argc, char** argv);

// The configuration files: each file that is named, and all files of a folder whose names end in
// ".cfg", sorted by name. Throws companions::WrongCommandLine if two targets would have the same
// name.
struct TargetFile {
  std::string name;  // of the target: the file name without folder and extension
  std::string path;
};
[[nodiscard]] std::vector<TargetFile> targetFiles(const std::vector<std::string>& configurations);

}  // namespace exporter
