#include "tal/sql/limits.h"

#include <algorithm>
#include <map>
#include <utility>

namespace tal::sql {
namespace {

using Owner = std::pair<std::uint32_t, std::string>;
using Counts = std::map<Owner, std::size_t>;

Owner ownerOf(const FileHandle& handle) { return {handle.clientIndex, handle.clientName}; }

template <typename Handle>
bool waits(const Handle& handle) {
  return handle.waitState != wait_state::kNone;
}

FileHandle leftOut(const FileHandle& /*kind*/, std::size_t count) {
  FileHandle handle;
  handle.clientName = moreText(count);
  return handle;
}

ClientHandle leftOut(const ClientHandle& /*kind*/, std::size_t count) {
  ClientHandle handle;
  handle.fileName = moreText(count);
  return handle;
}

// Removes the handles that `keep` refuses, which is asked once for each.
template <typename Handle, typename Keep>
void cut(std::vector<Handle>& handles, const Keep& keep) {
  const std::size_t removed =
      std::erase_if(handles, [&keep](const Handle& handle) { return !keep(handle); });
  if (removed > 0) handles.push_back(leftOut(Handle{}, removed));
}

template <typename Entry>
std::size_t handlesIn(const std::vector<Entry>& entries) {
  std::size_t count = 0;
  for (const Entry& entry : entries) count += entry.handles.size();
  return count;
}

// Takes one from the share of a client; false when it is used up.
bool take(std::size_t& left) { return left > 0 && left-- > 0; }

// The shares that are left to the clients when those of their handles that wait have theirs.
Counts sharesAfterWaiting(const std::vector<OpenFile>& files, std::size_t share, Counts& waiting) {
  Counts shares;
  for (const OpenFile& file : files) {
    for (const FileHandle& handle : file.handles) {
      std::size_t& left = shares.try_emplace(ownerOf(handle), share).first->second;
      if (waits(handle) && take(left)) ++waiting[ownerOf(handle)];
    }
  }
  return shares;
}

std::size_t ownersIn(const std::vector<OpenFile>& files) {
  Counts owners;
  for (const OpenFile& file : files) {
    for (const FileHandle& handle : file.handles) owners.try_emplace(ownerOf(handle));
  }
  return owners.size();
}

}  // namespace

std::size_t handlesOfEachClient(std::size_t handles, std::size_t clients) noexcept {
  if (handles <= kMostHandles) return handles;
  return std::max<std::size_t>(kMostHandles / std::max<std::size_t>(clients, 1), 1);
}

std::string moreText(std::size_t count) {
  std::string text = "(";
  text += std::to_string(count);
  return text += " more)";
}

void limitHandles(std::vector<OpenFile>& files) {
  if (handlesIn(files) <= kMostHandles) return;
  const std::size_t share = handlesOfEachClient(handlesIn(files), ownersIn(files));
  Counts waiting;
  Counts others = sharesAfterWaiting(files, share, waiting);
  for (OpenFile& file : files) {
    cut(file.handles, [&](const FileHandle& handle) {
      return take((waits(handle) ? waiting : others)[ownerOf(handle)]);
    });
  }
}

void limitHandles(std::vector<Client>& clients) {
  if (handlesIn(clients) <= kMostHandles) return;
  const std::size_t share = handlesOfEachClient(handlesIn(clients), clients.size());
  for (Client& client : clients) {
    const auto all =
        static_cast<std::size_t>(std::ranges::count_if(client.handles, waits<ClientHandle>));
    std::size_t waiting = std::min(all, share);
    std::size_t others = share - waiting;
    cut(client.handles,
        [&](const ClientHandle& handle) { return take(waits(handle) ? waiting : others); });
  }
}

}  // namespace tal::sql
