// A report of zelk taken apart, so that the text form and the JSON form can be held against the
// same facts.
#pragma once

#include <compare>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace servers_testing {

// Values by the labels of the text form, without colons, as the text form writes them: flags are
// "Yes" and "No", an open mode of two words has a comma, a counted resource is its figures with
// blanks between, "7 7 100".
using Values = std::map<std::string, std::string>;

// A file, a session, a connection, or a handle of one of the first two. Names are in capitals, as
// titles are.
struct Entry {
  std::string name = {};
  Values values = {};
  std::vector<Entry> handles = {};
};

struct Report {
  std::string version;
  std::map<std::string, std::size_t> announced;  // how many entries each list says to have
  std::vector<Entry> files;
  std::vector<Entry> sessions;
  std::vector<Entry> connections;
  Values usage;
  Values communication;
};

// Both throw std::runtime_error at anything that does not belong into a report of all sections: a
// line of no known form, a document that is not well-formed, a key that stands twice.
Report readText(const std::string& text);
Report readJson(const std::string& text);

// Throws std::runtime_error unless the text is a JSON document in which no object has a key twice.
void requireJson(const std::string& text);

// Both lists of handles have this form, a line each, sorted:
// "FILE client open mode, record lock type, wait state, transaction state". The client is the
// number that both lists know, the process or the connection.
std::string handlesOfFiles(const Report& report);
std::string handlesOfSessions(const Report& report, const std::string& numberLabel);

// The connections, a line each, sorted: "user host application database status".
std::string connectionLines(const Report& report);

// Files and sessions with all their values, for the comparison of two forms.
std::string describe(const std::vector<Entry>& entries);

// The lines of a text in their order.
std::vector<std::string> linesOf(const std::string& text);
// The lines sorted and joined again, each with its end.
std::string sorted(std::vector<std::string> lines);

std::string capitals(std::string text);

// "2 days  01:02:03 (hh:mm:ss)" in seconds.
long uptimeSeconds(const Report& report);

}  // namespace servers_testing
