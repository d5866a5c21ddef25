// An engine whose answers are lines of an input.
//
// One line for each call: a letter, then what is served. The letter is N for "no entry", G for
// "client gone", C for "file closed", E for the status whose number follows; any other stands for
// success. In what is served, "\HH" is the byte with that hexadecimal number. A structure or text
// is filled from its beginning; after "*" the bytes are repeated to its end, so that no text in it
// is closed. A number is decimal; a count without digits is the highest there is.
//
// After the last line every list ends and everything else succeeds with zeros.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "engine/tal.h"

namespace fuzzing {

struct Answer {
  std::int16_t status = 0;
  std::string bytes;
};

// A list as the caller asks for it.
struct Snapshot {
  bool isTaken = false;
  std::uint32_t count = 0;
};

class FuzzedEngine {
 public:
  explicit FuzzedEngine(std::string_view script) : script_(script) {}

  Answer next();
  // The same for an entry of a list, which ends with the script.
  Answer nextEntry();

  std::int32_t handle = -1;
  bool isStarted = false;
  int stops = 0;
  int disconnects = 0;
  std::size_t calls = 0;
  Snapshot files;
  Snapshot clients;
  Snapshot connections;
  std::string fileName;      // of the last file, up to its NUL
  tagTALCLIENTID client{};   // the last one
  int namedProtocols = 0;    // that were served
  bool isWellFormed = true;  // nothing was served that breaks a JSON document

 private:
  std::string_view script_;
};

// The engine of this process.
FuzzedEngine& engine();

// Fills a structure or text.
void fill(std::span<char> out, std::string_view bytes);
// The number in the bytes, or `otherwise`.
std::int64_t numberIn(std::string_view bytes, std::int64_t otherwise);

}  // namespace fuzzing
