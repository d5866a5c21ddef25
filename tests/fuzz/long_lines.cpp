// Lines that are too long: the input follows a first line that is nearly so.
#include <algorithm>
#include <string>

#include "orv/String.h"
#include "orv/io/Readers.h"
#include "tests/fuzz/target.h"
#include "tests/unit/memory_streams.h"

namespace fuzzing {

void run(std::string_view input) {
  constexpr std::size_t kLimit = orv::io::BufferedReader::kMaximumLineLength;
  constexpr std::size_t kPiece = 4096;
  constexpr std::size_t kBuffer = 2048;
  const orv::String text(std::string(kLimit - 3, 'x').append(input));
  const std::wstring first = text.wide().substr(0, text.wide().find(L'\n'));
  const std::wstring rest = text.wide().substr(std::min(first.size() + 1, text.length()));
  orv::io::BufferedReader reader(orv::makeReference<orv::io::InputStreamReader>(
      orv::makeReference<testing_support::MemoryInputStream>(text.toBytes(), kPiece), kBuffer));

  orv::String line;
  require(reader.readLine(line) && line.wide() == first.substr(0, kLimit), "a long line is cut");
  require(reader.isLineCut() == (first.size() > kLimit), "a cut is reported");
  const bool hasSign = first.find(L'=', line.length()) != std::wstring::npos;
  require(reader.restOfLineHas(L'=') == hasSign, "the rest of a line is looked at");
  const std::wstring second = rest.substr(0, rest.find(L'\n'));
  require(reader.readLine(line) == !rest.empty(), "a line follows a cut one");
  require(rest.empty() || line.wide() == second, "a line after a cut one is whole");
}

}  // namespace fuzzing
