#include <cstdint>
#include <string>
#include <utility>

#include "orv/Encoding.h"
#include "orv/i18n/StringBundle.h"
#include "orv/io/InputStreams.h"
#include "orv/io/Readers.h"

namespace orv::i18n {
namespace {

constexpr std::size_t kBufferSize = 2048;
constexpr int kTypicalTexts = 101;
constexpr float kLoadFactor = 0.75F;
constexpr char kReplacement = '?';

bool isBlank(char character) { return character == ' ' || character == '\t' || character == '\r'; }

// The value of four hexadecimal digits at `at`, or -1.
int hexadecimalAt(const std::string& text, std::size_t at) {
  if (at + 4 > text.size()) return -1;
  int value = 0;
  for (std::size_t i = at; i < at + 4; ++i) {
    const char digit = text[i];
    if (digit >= '0' && digit <= '9') {
      value = value * 16 + (digit - '0');
    } else if (digit >= 'a' && digit <= 'f') {
      value = value * 16 + (digit - 'a' + 10);
    } else if (digit >= 'A' && digit <= 'F') {
      value = value * 16 + (digit - 'A' + 10);
    } else {
      return -1;
    }
  }
  return value;
}

void append(int character, std::string& result) {
  char bytes[kMaximumBytesPerCharacter];
  result.append(bytes, encodeUtf8(static_cast<wchar_t>(character), bytes));
}

// Appends the character of an escape whose letter stands at `at`; returns where it ends. Two
// escapes of a surrogate pair make one character; half of a pair makes none.
std::size_t appendEscaped(const std::string& text, std::size_t at, std::string& result) {
  const int value = text[at] == 'u' ? hexadecimalAt(text, at + 1) : -1;
  if (value < 0) {
    result.push_back(text[at] == 'n' ? '\n' : text[at] == 't' ? '\t' : text[at]);
    return at + 1;
  }
  const std::size_t end = at + 5;
  if (value < 0xD800 || value > 0xDFFF) {
    append(value, result);
    return end;
  }
  const bool isPaired = value < 0xDC00 && text.compare(end, 2, "\\u") == 0;
  const int low = isPaired ? hexadecimalAt(text, end + 2) : -1;
  if (low < 0xDC00 || low > 0xDFFF) {
    result.push_back(kReplacement);
    return end;
  }
  append(0x10000 + ((value - 0xD800) << 10) + (low - 0xDC00), result);
  return end + 6;
}

String unescape(const std::string& text) {
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] == '\\' && at + 1 < text.size()) {
      at = appendEscaped(text, at + 1, result);
    } else {
      result.push_back(text[at++]);
    }
  }
  return String(std::move(result));
}

std::string withoutLeadingBlanks(const std::string& text) {
  std::size_t begin = 0;
  while (begin < text.size() && isBlank(text[begin])) ++begin;
  return text.substr(begin);
}

bool endsInContinuation(const std::string& text) {
  std::size_t backslashes = 0;
  while (backslashes < text.size() && text[text.size() - 1 - backslashes] == '\\') ++backslashes;
  return backslashes % 2 == 1;
}

// The lines of a file, each without leading blanks and without a carriage return at its end.
class PhysicalLines {
 public:
  explicit PhysicalLines(const String& path)
      : reader_(makeReference<io::InputStreamReader>(
                    makeReference<io::FileInputStream>(path, io::FileInputStream::kLargestFile,
                                                       io::FileInputStream::kRegularFile),
                    kBufferSize),
                io::FileInputStream::kLargestFile) {}

  bool next(std::string& line) {
    String text;
    if (!reader_.readLine(text)) return false;
    line = withoutLeadingBlanks(text.toBytes());
    if (line.ends_with('\r')) line.pop_back();
    return true;
  }

 private:
  io::BufferedReader reader_;
};

void putText(const std::string& line, collections::StringHashMap& texts) {
  const std::size_t equals = line.find('=');
  if (equals == std::string::npos) return;
  const String key = String(line.substr(0, equals)).trim();
  texts.put(key, unescape(withoutLeadingBlanks(line.substr(equals + 1))));
}

}  // namespace

Reference<collections::StringHashMap> readProperties(const String& path) {
  PhysicalLines lines(path);
  auto texts = makeReference<collections::StringHashMap>(kTypicalTexts, kLoadFactor);
  std::string line;
  std::string continuation;
  while (lines.next(line)) {
    if (line.empty() || line.front() == '#' || line.front() == '!') continue;
    // Each piece is handled once, so that the time is linear in the length of the file.
    bool isContinued = endsInContinuation(line);
    while (isContinued) {
      line.pop_back();
      isContinued = lines.next(continuation) && endsInContinuation(continuation);
      line += std::exchange(continuation, {});
    }
    putText(line, *texts);
  }
  return texts;
}

}  // namespace orv::i18n
