// The record-level clients as they were at one moment.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "engine/tal.h"
#include "tal/engine.h"

namespace tal::interface {

// Owns the clients of one answer of the engine. Their identifiers are made final here: the text
// cleaned and cut to its field, and the whole unique, because it is the key of every look-up. A
// client whose identifier has already been taken gets another first number.
class ClientSnapshot {
 public:
  explicit ClientSnapshot(std::vector<Client> clients);

  [[nodiscard]] std::size_t count() const noexcept;

  // Throws Failure kNoEntry beyond the last client.
  [[nodiscard]] const Client& at(std::uint32_t index) const;

  // Takes the time of a hash look-up. Throws Failure kClientGone for a client that is not listed.
  [[nodiscard]] const Client& find(const tagTALCLIENTID& id) const;

 private:
  struct Hash {
    std::size_t operator()(const tagTALCLIENTID& id) const noexcept;
  };
  struct Equal {
    bool operator()(const tagTALCLIENTID& left, const tagTALCLIENTID& right) const noexcept;
  };

  std::vector<Client> clients_;
  std::unordered_map<tagTALCLIENTID, std::size_t, Hash, Equal> positions_;
};

}  // namespace tal::interface
