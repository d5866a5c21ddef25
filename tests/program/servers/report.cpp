#include "tests/program/servers/report.h"

#include <algorithm>
#include <sstream>

namespace servers_testing {
namespace {

std::string handleLine(const std::string& file, const std::string& client, const Values& values) {
  return file + " " + client + " " + values.at("Open Mode") + ", " + values.at("Record Lock Type") +
         ", " + values.at("Wait State") + ", " + values.at("Transaction State");
}

}  // namespace

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string sorted(std::vector<std::string> lines) {
  std::sort(lines.begin(), lines.end());
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

std::string capitals(std::string text) {
  for (char& letter : text) {
    if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
  }
  return text;
}

std::string handlesOfFiles(const Report& report) {
  std::vector<std::string> lines;
  for (const Entry& file : report.files) {
    for (const Entry& handle : file.handles) {
      lines.push_back(handleLine(file.name, handle.values.at("Client Index"), handle.values));
    }
  }
  return sorted(lines);
}

std::string handlesOfSessions(const Report& report, const std::string& numberLabel) {
  std::vector<std::string> lines;
  for (const Entry& session : report.sessions) {
    for (const Entry& handle : session.handles) {
      lines.push_back(handleLine(handle.name, session.values.at(numberLabel), handle.values));
    }
  }
  return sorted(lines);
}

std::string connectionLines(const Report& report) {
  std::vector<std::string> lines;
  for (const Entry& connection : report.connections) {
    const Values& values = connection.values;
    lines.push_back(values.at("User Name") + " " + values.at("Client Host Name") + " " +
                    values.at("Client Application") + " " + values.at("Data Source Name") + " " +
                    values.at("Connection Status"));
  }
  return sorted(lines);
}

std::string describe(const std::vector<Entry>& entries) {
  std::string text;
  for (const Entry& entry : entries) {
    text += "[" + entry.name + "]\n";
    for (const auto& [label, value] : entry.values) text.append(label + ": " + value + "\n");
    text += describe(entry.handles);
  }
  return text;
}

long uptimeSeconds(const Report& report) {
  std::istringstream text(report.usage.at("Engine Uptime"));
  long days = 0;
  std::string word;
  long hours = 0;
  long minutes = 0;
  long seconds = 0;
  char colon = 0;
  text >> days >> word >> hours >> colon >> minutes >> colon >> seconds;
  return ((days * 24 + hours) * 60 + minutes) * 60 + seconds;
}

}  // namespace servers_testing
