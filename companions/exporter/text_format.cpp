#include "companions/exporter/text_format.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <new>

#include "orv/String.h"

namespace exporter {
namespace {

constexpr std::size_t kLabelLimit = 128;
constexpr double kLargestExact = 9007199254740992;  // 2 to the power of 53

// Backslashes and line ends are escaped everywhere, quotes where the format demands it.
std::string escaped(std::string_view text, bool quotes) {
  std::string result;
  for (const char byte : text) {
    if (byte == '\n') {
      result += "\\n";
      continue;
    }
    if (byte == '\\' || (byte == '"' && quotes)) result += '\\';
    result += byte;
  }
  return result;
}

template <typename Number>
std::string digits(Number number) {
  std::array<char, 32> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  return {text.data(), end};
}

std::string numberText(double value) {
  const bool isWhole = std::trunc(value) == value && std::abs(value) < kLargestExact;
  return isWhole ? digits(static_cast<std::int64_t>(value)) : digits(value);
}

const char* suffix(Type type) noexcept {
  if (type == Type::kCounter) return "_total";
  return type == Type::kInfo ? "_info" : "";
}

const char* typeText(Type type, Format format) noexcept {
  if (type == Type::kCounter) return "counter";
  return type == Type::kInfo && format == Format::kOpenMetrics ? "info" : "gauge";
}

std::string sampleLine(const std::string& name, const Sample& sample) {
  std::string line = name;
  char before = '{';
  for (const auto& [label, value] : sample.labels) {
    line += before;
    line += label;
    line += "=\"" + escaped(value, true) + '"';
    before = ',';
  }
  if (!sample.labels.empty()) line += '}';
  return line + ' ' + numberText(sample.value) + '\n';
}

// Format 0.0.4 gives a family the name of its samples; OpenMetrics leaves out the suffix.
std::string header(const Definition& family, Format format) {
  const std::string type = typeText(family.type, format);
  if (format == Format::kText) {
    const std::string name = std::string(family.name) + suffix(family.type);
    return "# HELP " + name + ' ' + escaped(family.help, false) + "\n# TYPE " + name + ' ' + type +
           '\n';
  }
  const std::string name = family.name;
  const std::string unit = family.unit;
  return "# TYPE " + name + ' ' + type + '\n' +
         (unit.empty() ? "" : "# UNIT " + name + ' ' + unit + '\n') + "# HELP " + name + ' ' +
         escaped(family.help, true) + '\n';
}

}  // namespace

const char* contentType(Format format) noexcept {
  return format == Format::kOpenMetrics
             ? "application/openmetrics-text; version=1.0.0; charset=utf-8"
             : "text/plain; version=0.0.4; charset=utf-8";
}

std::string validText(std::string_view text, std::size_t limit) {
  const std::wstring wide = orv::String(text).wide();
  orv::String valid;
  for (const wchar_t character : std::wstring_view(wide).substr(0, limit)) {
    // A byte that cannot be decoded is one of these.
    const bool isByte = character >= 0xdc80 && character <= 0xdcff;
    valid.append(1, isByte ? L'\ufffd' : character);
  }
  return valid.toBytes();
}

std::string labelText(std::string_view text) { return validText(text, kLabelLimit); }

std::string serialized(const Metrics& metrics, Format format) {
  std::string text;
  for (const Definition& family : kDefinitions) {
    const std::vector<Sample>& samples = metrics.samples(family.metric);
    if (samples.empty()) continue;
    text += header(family, format);
    const std::string name = std::string(family.name) + suffix(family.type);
    for (const Sample& sample : samples) text += sampleLine(name, sample);
  }
  if (format == Format::kOpenMetrics) text += "# EOF\n";
  return text;
}

std::string gzipped(const std::string& text) {
  constexpr int kGzip = 15 + 16;  // the largest window, and a gzip header
  z_stream stream{};
  if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, kGzip, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::bad_alloc();
  }
  std::string result(deflateBound(&stream, text.size()), '\0');
  // A parameter of zlib that is only read lacks a const.
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(result.data());
  stream.avail_out = static_cast<uInt>(result.size());
  deflate(&stream, Z_FINISH);
  result.resize(stream.total_out);
  deflateEnd(&stream);
  return result;
}

}  // namespace exporter
