// What the exporter answers, by path.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "companions/exporter/http_server.h"
#include "companions/exporter/metrics.h"
#include "companions/exporter/target.h"

namespace exporter {

using Targets = std::vector<std::unique_ptr<Target>>;

// The metrics of one moment of a target. If the target does not answer by the deadline, they say
// that it is not up.
[[nodiscard]] Metrics scraped(Target& target, Clock::time_point deadline, std::size_t fileCount);

// How long a scrape may take, by the header X-Prometheus-Scrape-Timeout-Seconds. The header may
// hold any text.
[[nodiscard]] Clock::duration scrapeLimit(const std::string& header);

class Pages {
 public:
  // The targets must live longer. `address` names the exporter if a request has no host.
  Pages(const Targets& targets, std::string address, std::size_t fileCount);

  // May be called by any number of threads.
  [[nodiscard]] Reply answer(const Request& request);

 private:
  Reply probe(const Request& request);
  Reply metrics(const Request& request);
  Reply discovery(const Request& request) const;
  Metrics scrape(Target& target, const Request& request);

  const Targets& targets_;
  const std::string address_;
  const std::size_t fileCount_;
  std::atomic<std::uint64_t> scrapes_ = 0;
  std::atomic<std::uint64_t> failures_ = 0;
};

// The page for people.
[[nodiscard]] Reply overview(const Targets& targets);

}  // namespace exporter
