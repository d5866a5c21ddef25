// What a scraper accepts, by the headers Accept and Accept-Encoding.
#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>
#include <string>
#include <vector>

#include "companions/exporter/text_format.h"

namespace exporter {
namespace {

std::string_view trimmed(std::string_view text) {
  const auto begin = text.find_first_not_of(" \t");
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (std::size_t end = 0; end != std::string_view::npos;) {
    end = text.find(separator);
    parts.push_back(trimmed(text.substr(0, end)));
    if (end != std::string_view::npos) text.remove_prefix(end + 1);
  }
  return parts;
}

std::string lower(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(),
                         [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
  return result;
}

// One element of a header: a name, its weight, and its version if it has one.
struct Accepted {
  std::string name;
  double weight = 1;
  std::string version;
};

double weightIn(std::string_view text) {
  double weight = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), weight);
  return error == std::errc() && weight >= 0 && weight <= 1 ? weight : 0;
}

std::vector<Accepted> acceptedIn(std::string_view header) {
  std::vector<Accepted> list;
  for (const std::string_view element : split(header, ',')) {
    const auto parts = split(element, ';');
    Accepted accepted{lower(parts.front()), 1, ""};
    for (const std::string_view part : parts) {
      if (part.starts_with("q=")) accepted.weight = weightIn(part.substr(2));
      if (part.starts_with("version=")) accepted.version = part.substr(8);
    }
    list.push_back(std::move(accepted));
  }
  return list;
}

// The weight of the most specific of the names that the header has; nothing if it has none of them.
std::optional<double> weightOf(const std::vector<Accepted>& list, std::string_view version,
                               std::initializer_list<std::string_view> names) {
  for (const std::string_view name : names) {
    std::optional<double> weight;
    for (const Accepted& each : list) {
      const bool fits = each.version.empty() || each.version == version;
      if (each.name == name && fits) weight = std::max(weight.value_or(0), each.weight);
    }
    if (weight) return weight;
  }
  return std::nullopt;
}

}  // namespace

Format preferredFormat(std::string_view accept) {
  const auto list = acceptedIn(accept);
  const double text = weightOf(list, "0.0.4", {"text/plain", "text/*", "*/*"}).value_or(0);
  const double open =
      weightOf(list, "1.0.0", {"application/openmetrics-text", "application/*", "*/*"}).value_or(0);
  const bool isNamed = weightOf(list, "1.0.0", {"application/openmetrics-text"}).has_value();
  const bool prefersOpen = open > text || (open == text && open > 0 && isNamed);
  return prefersOpen ? Format::kOpenMetrics : Format::kText;
}

bool acceptsGzip(std::string_view acceptEncoding) {
  return weightOf(acceptedIn(acceptEncoding), "", {"gzip", "*"}).value_or(0) > 0;
}

}  // namespace exporter
