#include <cstdint>
#include <utility>

#include "orv/i18n/StringBundle.h"
#include "orv/io/InputStreams.h"
#include "orv/io/Readers.h"

namespace orv::i18n {
namespace {

constexpr std::size_t kBufferSize = 2048;
constexpr int kTypicalTexts = 101;
constexpr float kLoadFactor = 0.75F;
constexpr wchar_t kReplacement = L'?';

bool isBlank(wchar_t character) {
  return character == L' ' || character == L'\t' || character == L'\r';
}

// The value of four hexadecimal digits at `at`, or -1.
int hexadecimalAt(const std::wstring& text, std::size_t at) {
  if (at + 4 > text.size()) return -1;
  int value = 0;
  for (std::size_t i = at; i < at + 4; ++i) {
    const wchar_t digit = text[i];
    if (digit >= L'0' && digit <= L'9') {
      value = value * 16 + (digit - L'0');
    } else if (digit >= L'a' && digit <= L'f') {
      value = value * 16 + (digit - L'a' + 10);
    } else if (digit >= L'A' && digit <= L'F') {
      value = value * 16 + (digit - L'A' + 10);
    } else {
      return -1;
    }
  }
  return value;
}

// Appends the character of an escape whose letter stands at `at`; returns where it ends. Two
// escapes of a surrogate pair make one character; half of a pair makes none.
std::size_t appendEscaped(const std::wstring& text, std::size_t at, std::wstring& result) {
  const int value = text[at] == L'u' ? hexadecimalAt(text, at + 1) : -1;
  if (value < 0) {
    result.push_back(text[at] == L'n' ? L'\n' : text[at] == L't' ? L'\t' : text[at]);
    return at + 1;
  }
  const std::size_t end = at + 5;
  if (value < 0xD800 || value > 0xDFFF) {
    result.push_back(static_cast<wchar_t>(value));
    return end;
  }
  const bool isPaired = value < 0xDC00 && text.compare(end, 2, L"\\u") == 0;
  const int low = isPaired ? hexadecimalAt(text, end + 2) : -1;
  if (low < 0xDC00 || low > 0xDFFF) {
    result.push_back(kReplacement);
    return end;
  }
  result.push_back(static_cast<wchar_t>(0x10000 + ((value - 0xD800) << 10) + (low - 0xDC00)));
  return end + 6;
}

String unescape(const std::wstring& text) {
  std::wstring result;
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] == L'\\' && at + 1 < text.size()) {
      at = appendEscaped(text, at + 1, result);
    } else {
      result.push_back(text[at++]);
    }
  }
  return String(std::move(result));
}

std::wstring withoutLeadingBlanks(const std::wstring& text) {
  std::size_t begin = 0;
  while (begin < text.size() && isBlank(text[begin])) ++begin;
  return text.substr(begin);
}

bool endsInContinuation(const std::wstring& text) {
  std::size_t backslashes = 0;
  while (backslashes < text.size() && text[text.size() - 1 - backslashes] == L'\\') ++backslashes;
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

  bool next(std::wstring& line) {
    String text;
    if (!reader_.readLine(text)) return false;
    line = withoutLeadingBlanks(text.wide());
    if (line.ends_with(L'\r')) line.pop_back();
    return true;
  }

 private:
  io::BufferedReader reader_;
};

void putText(const std::wstring& line, collections::StringHashMap& texts) {
  const std::size_t equals = line.find(L'=');
  if (equals == std::wstring::npos) return;
  const String key = String(line.substr(0, equals)).trim();
  texts.put(key, unescape(withoutLeadingBlanks(line.substr(equals + 1))));
}

}  // namespace

Reference<collections::StringHashMap> readProperties(const String& path) {
  PhysicalLines lines(path);
  auto texts = makeReference<collections::StringHashMap>(kTypicalTexts, kLoadFactor);
  std::wstring line;
  std::wstring continuation;
  while (lines.next(line)) {
    if (line.empty() || line.front() == L'#' || line.front() == L'!') continue;
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
