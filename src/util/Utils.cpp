#include "util/Utils.h"

#include <time.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "orv/Files.h"
#include "orv/Parsing.h"
#include "orv/Process.h"

namespace {

constexpr unsigned kFolderPermissions = 0777;
constexpr std::size_t kTimeBufferSize = 100;
constexpr long kSecondsPerDay = 86400;
constexpr long kSecondsPerHour = 3600;
constexpr long kSecondsPerMinute = 60;
// The width to which each of the first fields of a version is padded.
constexpr std::size_t kVersionFieldWidths[] = {2, 2, 3};

template <class Integer>
Integer parseStrictly(const orv::String& text, Integer (*parse)(const orv::String&)) {
  const orv::String trimmed = text.trim();
  const Integer value = parse(trimmed);
  if (value == 0 && trimmed != "0") throw NumberFormatException();
  return value;
}

orv::Result createDirIfMissing(const orv::String& path) {
  return Utils::dirExist(path) ? 0 : orv::ORVDirCreate(path, kFolderPermissions);
}

// Negative parts of a time get a zero too.
orv::String twoDigits(long number) {
  return (number < 10 ? "0" : "") + orv::String::valueOf(number);
}

}  // namespace

bool Utils::fileExist(const orv::String& path) { return orv::ORVPathExists(path); }

bool Utils::dirExist(const orv::String& path) {
  orv::DirHandle* const folder = orv::ORVDirOpen(path);
  orv::ORVDirClose(folder);
  return folder != nullptr;
}

orv::Result Utils::createDirs(const orv::String& path) {
  constexpr char delimiter = orv::util::FilePath::dirDelim;
  orv::util::StringTokenizer tokens(path, delimiter);
  std::size_t folders = tokens.countTokens();
  orv::String folder;
  bool needsDelimiter = path.startsWith(std::string_view(&delimiter, 1));
  for (; folders > 1; --folders) {
    folder.append(needsDelimiter ? 1 : 0, delimiter).append(tokens.nextToken());
    if (const orv::Result result = createDirIfMissing(folder); result != 0) return result;
    needsDelimiter = true;
  }
  return 0;
}

void Utils::removeTabChars(orv::String& text) {
  std::string kept = text.toBytes();
  std::erase(kept, '\t');
  text = orv::String(std::move(kept));
}

void Utils::addBackslashChars(orv::String& text, char character) {
  if (!text.contains(character)) return;
  const auto wanted = static_cast<wchar_t>(static_cast<signed char>(character));
  const std::wstring original = text.wide();
  std::wstring escaped;
  escaped.reserve(original.size() + 8);
  std::size_t next = 0;
  for (; escaped.size() < original.size(); ++next) {
    if (original[next] == wanted) escaped.push_back(L'\\');
    escaped.push_back(original[next]);
  }
  escaped.append(original, next);
  text = orv::String(escaped);
}

orv::Reference<Utils::StringList> Utils::convertToStringList(int count, const char* const* texts) {
  auto list = orv::makeReference<StringList>();
  for (int i = 0; i < count; ++i) list->append(texts[i]);
  return list;
}

std::vector<int> Utils::convertStringListToIntArray(const StringList& list) {
  std::vector<int> numbers;
  numbers.reserve(list.size());
  for (const orv::String& text : list) numbers.push_back(parseInt(text));
  return numbers;
}

orv::String Utils::createDelimitedStr(const StringList& list, const char* delimiter) {
  const orv::String between(delimiter);
  orv::String joined;
  bool isFirst = true;
  for (const orv::String& text : list) {
    if (!std::exchange(isFirst, false)) joined += between;
    joined += text;
  }
  return joined;
}

orv::String Utils::convertStringListToString(const StringList& list) {
  return createDelimitedStr(list, " ");
}

int Utils::parseInt(const orv::String& text) {
  return parseStrictly<int>(text, orv::Number::parseInt);
}

long Utils::parseLong(const orv::String& text) {
  return parseStrictly<long>(text, orv::Number::parseLong);
}

orv::String Utils::getTime(const char* format) {
  const time_t now = orv::ORVTimeToPosix(orv::ORVTimeGetLocal());
  tzset();  // the time zone may change during the run
  tm local{};
  if (localtime_r(&now, &local) == nullptr) return {};
  char buffer[kTimeBufferSize];
  return orv::String(std::string_view(buffer, strftime(buffer, sizeof buffer, format, &local)));
}

orv::String Utils::convertTimeInSecs(long seconds) {
  const long days = seconds / kSecondsPerDay;
  const long restOfDay = seconds - days * kSecondsPerDay;
  const long hours = restOfDay / kSecondsPerHour;
  const long restOfHour = restOfDay - hours * kSecondsPerHour;
  const long minutes = restOfHour / kSecondsPerMinute;
  return orv::String::valueOf(days) + " day" + (seconds >= 2 * kSecondsPerDay ? "s" : "") + "  " +
         twoDigits(hours) + ":" + twoDigits(minutes) + ":" +
         twoDigits(restOfHour - minutes * kSecondsPerMinute);
}

void Utils::formatEngVerString(orv::String& version) {
  std::size_t begin = 0;
  for (const std::size_t width : kVersionFieldWidths) {
    const std::size_t end = version.wide().find(L'.', begin);
    const bool isLast = end == std::wstring::npos;
    const std::size_t length = (isLast ? version.length() : end) - begin;
    const std::size_t zeros = length > 0 && length < width ? width - length : 0;
    version.insert(begin, zeros, L'0');
    if (isLast) return;
    begin = end + zeros + 1;
  }
}
