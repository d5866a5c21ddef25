#include "tal/interface/snapshots.h"

#include <cstring>
#include <limits>
#include <string>
#include <utility>

#include "tal/interface/boundary.h"
#include "tal/text.h"

namespace tal::interface {
namespace {

constexpr std::size_t kNameLimit = TAL_NAME_SIZE - 1;
constexpr std::size_t kSuffixLimit = 11;  // "#4294967295"
constexpr std::size_t kIdLimit = sizeof(tagTALCLIENTID::text) - 1;

// How many numbers each beginning of a name has got. Names that share a beginning share its
// numbers, so that no number is tried twice and each file costs the same.
using Copies = std::map<std::string, std::size_t>;

std::string numbered(std::string name, Copies& copies) {
  fitText(name, kNameLimit - kSuffixLimit);
  const std::size_t copy = ++copies.try_emplace(name, 1).first->second;
  return name + '#' + std::to_string(copy);
}

// The position of `key`; throws `missing` if there is none.
template <typename Positions>
std::size_t positionOf(const typename Positions::key_type& key, const Positions& positions,
                       Status missing) {
  const auto found = positions.find(key);
  if (found == positions.end()) throw Failure(missing);
  return found->second;
}

}  // namespace

FileSnapshot::FileSnapshot(std::vector<OpenFile> files) : files_(std::move(files)) {
  Copies copies;
  for (std::size_t position = 0; position < files_.size(); ++position) {
    std::string& name = files_[position].name;
    fitText(name, kNameLimit);
    if (positions_.try_emplace(name, position).second) continue;
    const std::string wanted = name;
    do {
      name = numbered(wanted, copies);
    } while (!positions_.try_emplace(name, position).second);
  }
}

const OpenFile& FileSnapshot::at(std::uint32_t index) {
  const OpenFile& file = entryAt(files_, index);
  last_ = index;
  return file;
}

const OpenFile& FileSnapshot::find(std::string_view name) {
  if (files_.empty() || files_[last_].name != name) {
    last_ = positionOf(name, positions_, Status::kFileClosed);
  }
  return files_[last_];
}

ClientSnapshot::ClientSnapshot(std::vector<Client> clients) : clients_(std::move(clients)) {
  // Last number assigned per (text, task), so that each duplicate costs the same.
  std::map<std::pair<std::string_view, std::uint16_t>, std::uint16_t> assigned;
  for (std::size_t position = 0; position < clients_.size(); ++position) {
    Client& client = clients_[position];
    fitText(client.id, kIdLimit);
    while (!positions_.try_emplace(keyOf(client), position).second) {
      std::uint16_t& last = assigned[{client.id, client.taskNumber}];
      // No number is left for this text and task: the look-up finds an earlier client.
      if (last == std::numeric_limits<std::uint16_t>::max()) break;
      client.firstNumber = ++last;
    }
  }
}

ClientSnapshot::Key ClientSnapshot::keyOf(const Client& client) noexcept {
  return {client.id, client.firstNumber, client.taskNumber};
}

const Client& ClientSnapshot::at(std::uint32_t index) {
  const Client& client = entryAt(clients_, index);
  last_ = index;
  return client;
}

const Client& ClientSnapshot::find(const tagTALCLIENTID& id) {
  const Key key = {
      {id.text, strnlen(id.text, sizeof(id.text))},
      id.first, id.task
  };
  if (clients_.empty() || keyOf(clients_[last_]) != key) {
    last_ = positionOf(key, positions_, Status::kClientGone);
  }
  return clients_[last_];
}

}  // namespace tal::interface
