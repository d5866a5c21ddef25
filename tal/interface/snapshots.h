// The open files and the record-level clients as they were at one moment.
//
// Names and identifiers come from a server, which may have chosen them to do harm. So they are kept
// in sorted order, in which no choice of keys makes a look-up slow. Callers usually ask about the
// entry that they got last, which takes one comparison.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <tuple>
#include <vector>

#include "engine/tal.h"
#include "tal/engine.h"

namespace tal::interface {

// Owns the files of one answer of the engine. Their names are made final here: cleaned, cut to the
// interface's buffer, and unique, because a name is the key of every look-up. A name that is
// already taken gets "#2", "#3", ... at its end.
class FileSnapshot {
 public:
  explicit FileSnapshot(std::vector<OpenFile> files);
  // The positions refer to the names inside the files.
  FileSnapshot(const FileSnapshot&) = delete;
  FileSnapshot& operator=(const FileSnapshot&) = delete;

  [[nodiscard]] std::size_t count() const noexcept { return files_.size(); }

  // Throws Failure kNoEntry beyond the last file.
  [[nodiscard]] const OpenFile& at(std::uint32_t index);

  // Throws Failure kFileClosed for a name that is not listed.
  [[nodiscard]] const OpenFile& find(std::string_view name);

 private:
  std::vector<OpenFile> files_;
  std::map<std::string_view, std::size_t> positions_;
  std::size_t last_ = 0;  // the file that a caller got last
};

// Owns the clients of one answer of the engine. Their identifiers are made final here: the text
// cleaned and cut to its field, and the whole unique, because it is the key of every look-up. A
// client whose identifier is already taken gets another first number.
class ClientSnapshot {
 public:
  explicit ClientSnapshot(std::vector<Client> clients);
  // The positions refer to the identifiers inside the clients.
  ClientSnapshot(const ClientSnapshot&) = delete;
  ClientSnapshot& operator=(const ClientSnapshot&) = delete;

  [[nodiscard]] std::size_t count() const noexcept { return clients_.size(); }

  // Throws Failure kNoEntry beyond the last client.
  [[nodiscard]] const Client& at(std::uint32_t index);

  // Throws Failure kClientGone for a client that is not listed.
  [[nodiscard]] const Client& find(const tagTALCLIENTID& id);

 private:
  // The text, the first number and the task number.
  using Key = std::tuple<std::string_view, std::uint16_t, std::uint16_t>;

  static Key keyOf(const Client& client) noexcept;

  std::vector<Client> clients_;
  std::map<Key, std::size_t> positions_;
  std::size_t last_ = 0;  // the client that a caller got last
};

}  // namespace tal::interface
