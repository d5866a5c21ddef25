// The text formats in which metrics are served.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "companions/exporter/metrics.h"

namespace exporter {

enum class Format : std::uint8_t {
  kText,         // Prometheus text format 0.0.4
  kOpenMetrics,  // OpenMetrics 1.0
};

// The value of the header Content-Type.
[[nodiscard]] const char* contentType(Format format) noexcept;

// The format that a scraper prefers by the weights in its header Accept, which may hold any text.
// It is kText if the header accepts no format that is served.
[[nodiscard]] Format preferredFormat(std::string_view accept);

// Whether a header Accept-Encoding accepts gzip.
[[nodiscard]] bool acceptsGzip(std::string_view acceptEncoding);

// A text from outside, cut to `limit` characters. Bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] std::string validText(std::string_view text, std::size_t limit = 1024);

// The same as a label value, of at most 128 characters.
[[nodiscard]] std::string labelText(std::string_view text);

// The families that have samples.
[[nodiscard]] std::string serialized(const Metrics& metrics, Format format);

[[nodiscard]] std::string gzipped(const std::string& text);

}  // namespace exporter
