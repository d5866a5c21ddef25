#include "tal/interface/file_snapshot.h"

#include <string>
#include <utility>

#include "engine/tal.h"
#include "tal/interface/entry_at.h"
#include "tal/text.h"

namespace tal::interface {
namespace {

constexpr std::size_t kNameLimit = TAL_NAME_SIZE - 1;
constexpr std::size_t kSuffixLimit = 11;  // "#4294967295"

// How often each beginning of a name was completed with a number. Names that share a beginning
// share its numbers, so that no number is tried twice and each file costs the same.
using Copies = std::unordered_map<std::string, std::size_t>;

std::string numbered(std::string name, Copies& copies) {
  fitText(name, kNameLimit - kSuffixLimit);
  const std::size_t copy = ++copies.try_emplace(name, 1).first->second;
  return name + '#' + std::to_string(copy);
}

}  // namespace

FileSnapshot::FileSnapshot(std::vector<OpenFile> files) : files_(std::move(files)) {
  positions_.reserve(files_.size());
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

std::size_t FileSnapshot::count() const noexcept { return files_.size(); }

const OpenFile& FileSnapshot::at(std::uint32_t index) const { return entryAt(files_, index); }

const OpenFile& FileSnapshot::find(std::string_view name) const {
  const auto found = positions_.find(name);
  if (found == positions_.end()) throw Failure(Status::kFileClosed);
  return files_[found->second];
}

}  // namespace tal::interface
