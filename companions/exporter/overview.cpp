// The page for people: the result of the last scrape of each target.
#include <gnutls/crypto.h>
#include <gnutls/gnutls.h>

#include <array>
#include <ctime>
#include <new>

#include "companions/exporter/pages.h"
#include "companions/exporter/text_format.h"

namespace exporter {
namespace {

constexpr const char* kStyle =
    "body{font:16px/1.4 sans-serif;margin:1em auto;max-width:60em;padding:0 .6em}"
    "table{border-collapse:collapse;width:100%}"
    "td,th{padding:.3em .6em .3em 0;text-align:left;vertical-align:top;"
    "border-bottom:1px solid #ccc;overflow-wrap:anywhere}"
    ".up{color:#060}.down{color:#a00;font-weight:bold}"
    // On a phone each target is a paragraph, because three columns do not fit.
    "@media(max-width:40em){th{display:none}tr{display:block;border-bottom:1px solid #ccc;"
    "padding:.3em 0}td{display:block;border:0;padding:0}}";

std::string html(const std::string& text) {
  std::string result;
  for (const char byte : validText(text)) {
    switch (byte) {
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '&':
        result += "&amp;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += byte;
    }
  }
  return result;
}

// As a value in a query: all characters but letters and digits are escaped.
std::string query(const std::string& text) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string result;
  for (const char byte : text) {
    const auto code = static_cast<unsigned char>(byte);
    const bool isPlain = (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') ||
                         (code >= 'a' && code <= 'z');
    if (isPlain)
      result += byte;
    else
      result += {'%', kDigits[code >> 4], kDigits[code & 0xf]};
  }
  return result;
}

std::string timeText(std::time_t time) {
  std::tm parts{};
  gmtime_r(&time, &parts);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S UTC", &parts);
  return text.data();
}

std::string figures(const Outline& last) {
  std::string text;
  if (const auto& usage = last.usage) {
    text = std::to_string(usage->sessions.current) + " sessions, " +
           std::to_string(usage->transactions.current) + " transactions, " +
           std::to_string(usage->locks.current) + " locks";
  }
  if (last.openFiles) {
    text += (text.empty() ? "" : ", ") + std::to_string(*last.openFiles) + " open files";
  }
  return text;
}

std::string state(const Target& target) {
  const auto last = target.outline();
  if (!last) return "<td>not scraped yet<td>";
  const char* const word = last->isUp ? "up" : "down";
  return std::string("<td class=\"") + word + "\">" + word + " since " + timeText(last->since) +
         "<td>" + html(last->isUp ? figures(*last) : last->failure);
}

std::string styleHash() {
  std::array<unsigned char, 32> digest{};
  const std::string_view style = kStyle;
  gnutls_hash_fast(GNUTLS_DIG_SHA256, style.data(), style.size(), digest.data());
  const gnutls_datum_t bytes{digest.data(), static_cast<unsigned>(digest.size())};
  gnutls_datum_t text{};
  if (gnutls_base64_encode2(&bytes, &text) != GNUTLS_E_SUCCESS) throw std::bad_alloc();
  const std::string result(reinterpret_cast<const char*>(text.data), text.size);
  gnutls_free(text.data);
  return result;
}

}  // namespace

Reply overview(const Targets& targets) {
  std::string text =
      "<!DOCTYPE html><html lang=\"en\"><meta charset=\"utf-8\">"
      "<meta name=\"viewport\" content=\"width=device-width\"><title>zelk-exporter</title><style>";
  text += kStyle;
  text += "</style><h1>zelk-exporter</h1><table><tr><th>Target<th>State<th>Last figures";
  for (const auto& target : targets) {
    text += "<tr><td><a href=\"/probe?target=" + query(target->name()) + "\">" +
            html(target->name()) + "</a>" + state(*target);
  }
  text += "</table><p><a href=\"/metrics\">Metrics of the exporter</a></p></html>\n";
  return {
      200,
      std::move(text),
      {{"Content-Type", "text/html; charset=utf-8"},
                    {"Content-Security-Policy", "default-src 'none'; style-src 'sha256-" + styleHash() +
                                       "'; base-uri 'none'; "
                                       "form-action 'none'; frame-ancestors 'none'"}}
  };
}

}  // namespace exporter
