// The text form of a report.
#include <algorithm>
#include <functional>
#include <optional>
#include <regex>
#include <stdexcept>

#include "tests/program/servers/report.h"

namespace servers_testing {
namespace {

std::string trimmed(const std::string& text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == text.npos) return "";
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// Figures are parted by tabs.
std::string withSingleBlanks(const std::string& text) {
  return std::regex_replace(text, std::regex("\t+"), " ");
}

bool isRule(const std::string& line) {
  return !line.empty() && line.find_first_not_of('=') == line.npos;
}

class TextReader {
 public:
  Report read(const std::string& text) {
    std::vector<std::string> lines = linesOf(text);
    const auto begin = std::find(lines.begin(), lines.end(), "//End of Configuration");
    if (begin == lines.end()) throw std::runtime_error("no configuration in: " + text);
    lines.erase(lines.begin(), begin + 1);
    for (std::size_t at = 0; at < lines.size();) at += readOne(lines, at);
    return std::move(report_);
  }

 private:
  // Returns how many lines it has read.
  std::size_t readOne(const std::vector<std::string>& lines, std::size_t at) {
    const std::string line = trimmed(lines[at]);
    if (isRule(line)) {
      if (at + 2 >= lines.size() || lines[at] != lines[at + 2]) refuse(lines[at]);
      readTitle(trimmed(lines[at + 1]));
      return 3;
    }
    static const std::regex columns("Current\t\tPeak\t\tMaximum");
    if (!line.empty() && !std::regex_match(line, columns)) readValue(line);
    return 1;
  }

  void readValue(const std::string& line) {
    const auto colon = line.find(':');
    if (colon == line.npos || values_ == nullptr) refuse(line);
    const std::string value = withSingleBlanks(trimmed(line.substr(colon + 1)));
    if (!values_->emplace(line.substr(0, colon), value).second) refuse(line);
  }

  void readTitle(const std::string& title) {
    values_ = nullptr;
    for (const auto& [form, action] : titles_) {
      std::smatch parts;
      if (!std::regex_match(title, parts, form)) continue;
      action(parts[1]);
      return;
    }
    refuse(title);
  }

  void announce(const std::string& list, const std::string& number) {
    report_.announced[list] = std::stoul(number);
  }

  void begin(std::vector<Entry>& list, const std::string& name = "") {
    values_ = &list.emplace_back(Entry{.name = name}).values;
  }

  void expectHandles(const std::vector<Entry>& owners, const std::string& number) {
    if (owners.empty() || std::stoul(number) == 0) refuse("handles: " + number);
  }

  [[noreturn]] static void refuse(const std::string& line) {
    throw std::runtime_error("not a line of a report: " + line);
  }

  using Action = std::function<void(const std::string&)>;

  Report report_;
  Values* values_ = nullptr;  // where the lines below the last title belong
  const std::vector<std::pair<std::regex, Action>> titles_ = {
      {std::regex("ENGINE VERSION: (\\S+)"),                                 [this](const auto& text) { report_.version = text; }},
      {std::regex("\\*{3} (START RECORD) [0-9/]{8} [0-9:]{5} [AP]M \\*{3}"), [](const auto&) {}                                  },
      {std::regex("ACTIVE FILES:  (\\d+)"),                                  [this](const auto& n) { announce("files", n); }     },
      {std::regex("ACTIVE FILE INFO:  (.+)"),
       [this](const auto& name) { begin(report_.files, name); }                                                                  },
      {std::regex("FILE HANDLES: (\\d+)"),
       [this](const auto& n) { expectHandles(report_.files, n); }                                                                },
      {std::regex("HANDLE INFO: #(\\d+)"),
       [this](const auto&) { begin(report_.files.back().handles); }                                                              },
      {std::regex("VANTOR ACTIVE SESSIONS: (\\d+)"),
       [this](const auto& n) { announce("sessions", n); }                                                                        },
      {std::regex("ACTIVE SESSION INFO: #(\\d+)"),
       [this](const auto&) { begin(report_.sessions); }                                                                          },
      {std::regex("SESSION HANDLES: (\\d+)"),
       [this](const auto& n) { expectHandles(report_.sessions, n); }                                                             },
      {std::regex("HANDLE \\d+ INFO: (.+)"),
       [this](const auto& name) { begin(report_.sessions.back().handles, name); }                                                },
      {std::regex("SQL CONNECTION MANAGER ACTIVE SESSIONS: (\\d+)"),
       [this](const auto& n) { announce("connections", n); }                                                                     },
      {std::regex("SESSION INFO: # (\\d+)"),                                 [this](const auto&) { begin(report_.connections); } },
      {std::regex("RESOURCE (USAGE)"),                                       [this](const auto&) { values_ = &report_.usage; }   },
      {std::regex("COMMUNICATION (STATISTICS)"),
       [this](const auto&) { values_ = &report_.communication; }                                                                 },
  };
};

}  // namespace

Report readText(const std::string& text) { return TextReader().read(text); }

}  // namespace servers_testing
