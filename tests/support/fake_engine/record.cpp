#include "tests/support/fake_engine/record.h"

#include <cstring>

namespace fake_engine {
namespace {

const File* fileOf(const Record& record, const Call& call) {
  const auto found = std::ranges::find(record.files, std::string_view(call.texts[0]), &File::name);
  return found == record.files.end() ? nullptr : &*found;
}

const Client* clientOf(const Record& record, const Call& call) {
  const auto found = std::ranges::find_if(record.clients, [&](const Client& client) {
    return std::memcmp(&client.id, call.client, sizeof client.id) == 0;
  });
  return found == record.clients.end() ? nullptr : &*found;
}

// The entry that the call requests, or null after the end.
template <typename Entry>
const Entry* entryOf(const std::vector<Entry>& list, const Call& call) {
  return *call.index < list.size() ? &list[*call.index] : nullptr;
}

template <typename Filled>
std::int16_t fill(Filled* target, const Filled* source) {
  if (source == nullptr) return TAL_STATUS_NO_ENTRY;
  *target = *source;
  return 0;
}

std::int16_t fillName(char* target, const File* file) {
  if (file == nullptr) return TAL_STATUS_NO_ENTRY;
  setText(*reinterpret_cast<char(*)[TAL_NAME_SIZE]>(target), file->name);
  return 0;
}

// Fills the structure of a call.
class Filler {
 public:
  Filler(const Record& record, const Call& call) : record_(record), call_(call) {}

  std::int16_t operator()(std::monostate /*nothing*/) const { return 0; }
  std::int16_t operator()(TalVersion* to) const { return fill(to, &record_.version); }
  std::int16_t operator()(TalUsage* to) const { return fill(to, &record_.usage); }
  std::int16_t operator()(TalCommStat* to) const { return fill(to, &record_.communication); }
  std::int16_t operator()(TalFileInfo* to) const { return fill(to, &file().info); }
  std::int16_t operator()(TalFileHandleInfo* to) const {
    return fill(to, entryOf(file().handles, call_));
  }
  std::int16_t operator()(tagTALCLIENTID* to) const {
    const Client* const client = entryOf(record_.clients, call_);
    return fill(to, client == nullptr ? nullptr : &client->id);
  }
  std::int16_t operator()(TalClientInfo* to) const { return fill(to, &client().info); }
  std::int16_t operator()(TalClientHandleInfo* to) const {
    return fill(to, entryOf(client().handles, call_));
  }
  std::int16_t operator()(TalSqlConnectionInfo* to) const {
    return fill(to, entryOf(record_.connections, call_));
  }

 private:
  [[nodiscard]] const File& file() const { return *fileOf(record_, call_); }
  [[nodiscard]] const Client& client() const { return *clientOf(record_, call_); }

  const Record& record_;
  const Call& call_;
};

std::size_t lengthOf(const Record& record, const Call& call) {
  if (call.client != nullptr) return clientOf(record, call)->handles.size();
  switch (call.list) {
    case List::kFiles:
      return call.texts[0] != nullptr ? fileOf(record, call)->handles.size() : record.files.size();
    case List::kClients:
      return record.clients.size();
    default:
      return record.connections.size();
  }
}

std::uint32_t countOf(const Record& record, const Call& call) {
  const auto announced = record.counts.find(call.function);
  return announced != record.counts.end() ? announced->second
                                          : static_cast<std::uint32_t>(lengthOf(record, call));
}

bool isUnknownFile(const Record& record, const Call& call) {
  return call.list == List::kFiles && call.texts[0] != nullptr && fileOf(record, call) == nullptr;
}

bool isUnknownClient(const Record& record, const Call& call) {
  return call.client != nullptr && clientOf(record, call) == nullptr;
}

}  // namespace

std::int16_t answer(const Record& record, const Call& call) {
  if (isUnknownFile(record, call)) return TAL_STATUS_FILE_CLOSED;
  if (isUnknownClient(record, call)) return TAL_STATUS_CLIENT_GONE;
  if (call.number != nullptr) {
    *call.number = call.kind == Kind::kConnect ? record.handle : record.engineType;
  }
  if (call.kind == Kind::kTake) *call.count = countOf(record, call);
  if (call.name != nullptr) return fillName(call.name, entryOf(record.files, call));
  return std::visit(Filler(record, call), call.structure);
}

}  // namespace fake_engine
