// Texts on their way in and out, whole and in pieces.
#include <string>
#include <vector>

#include "orv/Encoding.h"
#include "orv/String.h"
#include "orv/io/Readers.h"
#include "tal/text.h"
#include "tests/fuzz/served.h"
#include "tests/fuzz/target.h"
#include "tests/unit/memory_streams.h"

namespace fuzzing {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// The lines of a stream that gives its bytes in pieces, decoded in a buffer of `bufferSize`, with
// their line feeds.
std::string linesInPieces(std::string_view bytes, std::size_t pieceSize, std::size_t bufferSize) {
  orv::io::BufferedReader reader(orv::makeReference<orv::io::InputStreamReader>(
      orv::makeReference<testing_support::MemoryInputStream>(bytes, pieceSize), bufferSize));
  std::string result;
  orv::String line;
  while (reader.readLine(line)) {
    require(!line.contains('\n'), "a line is one line");
    result += line.toBytes() + "\n";
  }
  return result;
}

void requireEncoded(std::string_view bytes) {
  require(orv::String(bytes).toBytes() == bytes, "any bytes come out as they went in");
  const std::size_t whole = orv::lengthOfWholeCharacters(bytes);
  require(whole <= bytes.size() && bytes.size() - whole < 4, "less than a character is cut off");
}

void requireRead(std::string_view bytes) {
  std::string expected(bytes.substr(bytes.starts_with(kByteOrderMark) ? 3 : 0));
  if (!expected.empty() && expected.back() != '\n') expected += '\n';
  require(linesInPieces(bytes, 1, 4) == expected, "lines are read byte by byte");
  require(linesInPieces(bytes, 3, 5) == expected, "lines are read in small pieces");
  require(linesInPieces(bytes, 4096, 2048) == expected, "lines are read in large pieces");
}

void requireFitted(std::string_view bytes, std::size_t limit) {
  std::string text(bytes);
  tal::fitText(text, limit);
  require(text.size() <= limit, "a text fits its field");
  requireClean(text);

  std::vector<char> field(limit + 1, 'x');
  const std::size_t length = tal::putText(field, bytes);
  require(std::string_view(field.data()) == text && length == text.size(),
          "both ways into a field give the same");
}

}  // namespace

void run(std::string_view input) {
  requireEncoded(input);
  requireRead(input);
  for (const std::size_t limit : {std::size_t{0}, std::size_t{5}, std::size_t{11}, input.size()}) {
    requireFitted(input, limit);
  }
}

}  // namespace fuzzing
