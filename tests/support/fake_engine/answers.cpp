#include "tests/support/fake_engine/answers.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace fake_engine {
namespace {

// The fields of a line, read one after the other.
class Fields {
 public:
  explicit Fields(const std::string& line) {
    for (std::size_t at = 0; at <= line.size();) {
      const std::size_t end = std::min(line.find('\t', at), line.size());
      fields_.push_back(decode(line.substr(at, end - at)));
      at = end + 1;
    }
  }

  std::string text() {
    if (next_ == fields_.size()) {
      throw std::invalid_argument("a field is missing");
    }
    return fields_[next_++];
  }

  template <typename Integer>
  void number(Integer& target) {
    std::size_t used = 0;
    const std::string field = text();
    target = static_cast<Integer>(std::stoll(field, &used));
    if (used != field.size()) {
      throw std::invalid_argument("not a number: " + field);
    }
  }

  // Fills the field as the interface does: a NUL ends the text if there is room for it.
  template <std::size_t kSize>
  void text(char (&target)[kSize]) {
    setText(target, text());
  }

  [[nodiscard]] bool atEnd() const { return next_ == fields_.size(); }

 private:
  static std::string decode(const std::string& field) {
    std::string result;
    for (std::size_t i = 0; i < field.size(); ++i) {
      if (field[i] == '%') {
        result += static_cast<char>(std::stoi(field.substr(i + 1, 2), nullptr, 16));
        i += 2;
      } else {
        result += field[i];
      }
    }
    return result;
  }

  std::vector<std::string> fields_;
  std::size_t next_ = 0;
};

// Structures that consist of 32-bit words are filled word by word.
template <typename Structure>
void readWords(Fields& fields, Structure& target, std::size_t at, std::size_t count) {
  std::uint32_t words[sizeof(Structure) / sizeof(std::uint32_t)];
  std::memcpy(words, &target, sizeof target);
  for (std::size_t i = at; i < at + count && !fields.atEnd(); ++i) {
    fields.number(words[i]);
  }
  std::memcpy(&target, words, sizeof target);
}

constexpr std::size_t kProtocolsAt = 13;  // words before the protocol entries

void readFile(Fields& fields, Answers& answers) {
  File& file = answers.files.emplace_back();
  file.name = fields.text();
  fields.number(file.info.pageSize);
  fields.number(file.info.readOnly);
  fields.number(file.info.recordLocks);
  fields.number(file.info.transactionLock);
  fields.number(file.info.sizeKb);
}

void readFileHandle(Fields& fields, File& file) {
  TalFileHandleInfo& handle = file.handles.emplace_back();
  fields.number(handle.clientIndex);
  fields.number(handle.openMode);
  fields.number(handle.recordLockType);
  fields.number(handle.waitState);
  fields.number(handle.transactionState);
  fields.text(handle.clientName);
}

void readClient(Fields& fields, Answers& answers) {
  Client& client = answers.clients.emplace_back();
  fields.text(client.id.text);
  fields.number(client.id.first);
  fields.number(client.id.task);
  fields.number(client.info.site);
  fields.text(client.info.networkAddress);
  fields.number(client.info.recordsDeleted);
  fields.number(client.info.recordsUpdated);
  fields.number(client.info.recordsInserted);
  fields.number(client.info.recordsRead);
  fields.number(client.info.diskAccesses);
  fields.number(client.info.cacheAccesses);
  fields.number(client.info.locksUsed);
  fields.number(client.info.transactionState);
  fields.number(client.info.processId);
  fields.number(client.info.connectionNumber);
  fields.text(client.info.sessionName);
}

void readClientHandle(Fields& fields, Client& client) {
  TalClientHandleInfo& handle = client.handles.emplace_back();
  fields.number(handle.openMode);
  fields.number(handle.recordLockType);
  fields.number(handle.waitState);
  fields.number(handle.transactionState);
  fields.text(handle.fileName);
}

void readConnection(Fields& fields, Answers& answers) {
  TalSqlConnectionInfo& connection = answers.connections.emplace_back();
  fields.text(connection.clientHost);
  fields.text(connection.dataSource);
  fields.text(connection.application);
  fields.text(connection.networkAddress);
  fields.text(connection.userName);
  fields.number(connection.status);
  fields.number(connection.periodMs);
  fields.number(connection.totalTime);
}

CallNumber readCall(Fields& fields) {
  CallNumber call{fields.text(), 0};
  fields.number(call.second);
  return call;
}

// Reads records one by one; a handle belongs to the file or client before it.
class Reader {
 public:
  Answers answers;

  void readLine(const std::string& line) {
    Fields fields(line);
    const std::string kind = fields.text();
    const auto row = kRows.find(kind);
    if (row == kRows.end()) throw std::invalid_argument("unknown record: " + kind);
    (this->*row->second)(fields);
    if (!fields.atEnd()) throw std::invalid_argument("too many fields");
  }

 private:
  using Row = void (Reader::*)(Fields&);
  static const std::map<std::string, Row> kRows;

  void type(Fields& fields) { fields.number(answers.engineType); }
  void version(Fields& fields) { readWords(fields, answers.version, 0, 3); }
  void usage(Fields& fields) { readWords(fields, answers.usage, 0, 27); }
  void communication(Fields& fields) { readWords(fields, answers.communication, 0, kProtocolsAt); }
  void protocol(Fields& fields) {
    readWords(fields, answers.communication, kProtocolsAt + 4 * protocols_++, 4);
  }
  void file(Fields& fields) {
    readFile(fields, answers);
    lastWasClient_ = false;
  }
  void client(Fields& fields) {
    readClient(fields, answers);
    lastWasClient_ = true;
  }
  void handle(Fields& fields) {
    if (lastWasClient_) {
      readClientHandle(fields, answers.clients.back());
    } else {
      readFileHandle(fields, answers.files.at(answers.files.size() - 1));
    }
  }
  void connection(Fields& fields) { readConnection(fields, answers); }
  void announce(Fields& fields) {
    const std::string function = fields.text();
    fields.number(answers.counts[function]);
  }
  void status(Fields& fields) {
    const CallNumber call = readCall(fields);
    fields.number(answers.statuses[call]);
  }
  void exception(Fields& fields) {
    const CallNumber call = readCall(fields);
    answers.exceptions[call] = fields.text();
  }
  void pause(Fields& fields) {
    const CallNumber call = readCall(fields);
    answers.pauses[call] = fields.text();
  }

  std::size_t protocols_ = 0;
  bool lastWasClient_ = false;
};

const std::map<std::string, Reader::Row> Reader::kRows = {
    {"type",          &Reader::type         },
    {"version",       &Reader::version      },
    {"usage",         &Reader::usage        },
    {"communication", &Reader::communication},
    {"protocol",      &Reader::protocol     },
    {"file",          &Reader::file         },
    {"client",        &Reader::client       },
    {"handle",        &Reader::handle       },
    {"connection",    &Reader::connection   },
    {"announce",      &Reader::announce     },
    {"status",        &Reader::status       },
    {"throw",         &Reader::exception    },
    {"pause",         &Reader::pause        },
};

}  // namespace

Answers readAnswers(const std::string& path) {
  std::ifstream file(path);
  Reader reader;
  std::string line;
  try {
    if (!file) {
      throw std::invalid_argument("cannot be read");
    }
    while (std::getline(file, line)) {
      if (!line.empty() && line.front() != '#') {
        reader.readLine(line);
      }
    }
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "fake engine: %s: %s\n%s\n", path.c_str(), exception.what(), line.c_str());
    std::_Exit(125);
  }
  return reader.answers;
}

}  // namespace fake_engine
