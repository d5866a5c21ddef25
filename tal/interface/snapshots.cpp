#include "tal/interface/client_snapshot.h"

#include <cstring>
#include <functional>
#include <limits>
#include <string_view>
#include <utility>

#include "tal/interface/entry_at.h"
#include "tal/interface/layout.h"
#include "tal/text.h"

namespace tal::interface {
namespace {

constexpr std::size_t kIdLimit = sizeof(tagTALCLIENTID::text) - 1;

std::string_view textOf(const tagTALCLIENTID& id) noexcept {
  return {id.text, strnlen(id.text, sizeof(id.text))};
}

tagTALCLIENTID idOf(const Client& client) noexcept {
  tagTALCLIENTID id;
  fill(id, client);
  return id;
}

}  // namespace

std::size_t ClientSnapshot::Hash::operator()(const tagTALCLIENTID& id) const noexcept {
  const std::size_t numbers = (std::size_t{id.first} << 16) | id.task;
  // The odd constant spreads the numbers over all bits of the hash.
  return std::hash<std::string_view>{}(textOf(id)) ^ (numbers * 0x9e3779b97f4a7c15U);
}

bool ClientSnapshot::Equal::operator()(const tagTALCLIENTID& left,
                                       const tagTALCLIENTID& right) const noexcept {
  return left.first == right.first && left.task == right.task && textOf(left) == textOf(right);
}

ClientSnapshot::ClientSnapshot(std::vector<Client> clients) : clients_(std::move(clients)) {
  positions_.reserve(clients_.size());
  // The first number that was last given away, for each text and task that was met again. None is
  // tried twice, so that each client costs the same.
  std::unordered_map<tagTALCLIENTID, std::uint16_t, Hash, Equal> given;
  for (std::size_t position = 0; position < clients_.size(); ++position) {
    Client& client = clients_[position];
    fitText(client.id, kIdLimit);
    while (!positions_.try_emplace(idOf(client), position).second) {
      tagTALCLIENTID sharers = idOf(client);
      sharers.first = 0;
      std::uint16_t& last = given[sharers];
      // Text and task leave no further number: the look-up finds an earlier client.
      if (last == std::numeric_limits<std::uint16_t>::max()) break;
      client.firstNumber = ++last;
    }
  }
}

std::size_t ClientSnapshot::count() const noexcept { return clients_.size(); }

const Client& ClientSnapshot::at(std::uint32_t index) const { return entryAt(clients_, index); }

const Client& ClientSnapshot::find(const tagTALCLIENTID& id) const {
  const auto found = positions_.find(id);
  if (found == positions_.end()) throw Failure(Status::kClientGone);
  return clients_[found->second];
}

}  // namespace tal::interface
