#include "companions/exporter/pages.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "companions/exporter/text_format.h"

namespace exporter {
namespace {

constexpr double kUsualSeconds = 10;
constexpr double kReservedSeconds = 0.5;  // for sending the answer
constexpr double kMostSeconds = 600;

Reply plain(unsigned status, std::string text) {
  return {status, std::move(text), {{"Content-Type", "text/plain; charset=utf-8"}}};
}

Reply formatted(const Metrics& metrics, const Request& request) {
  const Format format = preferredFormat(request.accept);
  Reply reply{200, serialized(metrics, format), {{"Content-Type", contentType(format)}}};
  reply.headers.emplace_back("Vary", "Accept, Accept-Encoding");
  if (acceptsGzip(request.acceptEncoding)) {
    reply.body = gzipped(reply.body);
    reply.headers.emplace_back("Content-Encoding", "gzip");
  }
  return reply;
}

// Escapes quotes, backslashes and control characters; replaces bytes that are not UTF-8.
std::string jsonText(const std::string& text) {
  std::string result = "\"";
  for (const char byte : validText(text)) {
    char escape[8] = {byte, '\0'};
    if (byte == '"' || byte == '\\') std::snprintf(escape, sizeof(escape), "\\%c", byte);
    if (byte >= '\0' && byte < ' ') std::snprintf(escape, sizeof(escape), "\\u%04x", byte);
    result += byte == '\0' ? "\\u0000" : escape;
  }
  return result + '"';
}

}  // namespace

Metrics scraped(Target& target, Clock::time_point deadline, std::size_t fileCount) {
  const Clock::time_point begin = Clock::now();
  Metrics metrics;
  if (const auto collection = target.collect(deadline)) {
    addCollection(metrics, *collection, fileCount);
  } else {
    addMissed(metrics, std::chrono::duration<double>(Clock::now() - begin).count());
  }
  return metrics;
}

Clock::duration scrapeLimit(const std::string& header) {
  double seconds = 0;
  const auto [end, error] = std::from_chars(header.data(), header.data() + header.size(), seconds);
  const bool isLimit = error == std::errc() && seconds > 0 && seconds <= kMostSeconds;
  const double limit = (isLimit ? seconds : kUsualSeconds) - kReservedSeconds;
  return std::chrono::duration_cast<Clock::duration>(
      std::chrono::duration<double>(std::max(limit, 0.0)));
}

Pages::Pages(const Targets& targets, std::string address, std::size_t fileCount)
    : targets_(targets), address_(std::move(address)), fileCount_(fileCount) {}

Reply Pages::answer(const Request& request) {
  if (request.path == "/probe") return probe(request);
  if (request.path == "/metrics") return metrics(request);
  if (request.path == "/targets") return discovery(request);
  if (request.path == "/") return overview(targets_);
  if (request.path == "/-/healthy") return plain(200, "zelk-exporter is healthy\n");
  return plain(404, "no such page\n");
}

Metrics Pages::scrape(Target& target, const Request& request) {
  Metrics metrics = scraped(target, Clock::now() + scrapeLimit(request.scrapeTimeout), fileCount_);
  ++scrapes_;
  if (metrics.samples(Metric::kUp).front().value == 0) ++failures_;
  return metrics;
}

Reply Pages::probe(const Request& request) {
  const auto found = std::ranges::find_if(
      targets_, [&](const auto& target) { return target->name() == request.target; });
  if (found == targets_.end()) return plain(404, "no target has this name\n");
  return formatted(scrape(**found, request), request);
}

Reply Pages::metrics(const Request& request) {
  Metrics metrics;
  if (targets_.size() == 1) metrics = scrape(*targets_.front(), request);
  metrics.add(Metric::kExporterTargets, static_cast<double>(targets_.size()));
  metrics.add(Metric::kExporterScrapes, static_cast<double>(scrapes_));
  metrics.add(Metric::kExporterFailures, static_cast<double>(failures_));
  addProcess(metrics);
  return formatted(metrics, request);
}

Reply Pages::discovery(const Request& request) const {
  const std::string host = jsonText(request.host.empty() ? address_ : request.host);
  std::string text = "[";
  for (const auto& target : targets_) {
    const std::string name = jsonText(target->name());
    if (text.size() > 1) text += ',';
    text += "{\"targets\":[" + host + "],\"labels\":{\"__metrics_path__\":\"/probe\"," +
            "\"__param_target\":" + name + ",\"instance\":" + name + "}}";
  }
  return {200, text + "]", {{"Content-Type", "application/json"}}};
}

}  // namespace exporter
