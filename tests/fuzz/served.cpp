#include "tests/fuzz/served.h"

#include <cstdint>
#include <string>
#include <utility>

#include "engine/tal.h"
#include "tal/interface/layout.h"
#include "tal/interface/snapshots.h"
#include "tal/text.h"
#include "tests/fuzz/target.h"

namespace fuzzing {
namespace {

using tal::interface::fill;

template <std::size_t kSize>
void requireCleanField(const char (&field)[kSize]) {
  const std::string_view bytes(field, kSize);
  require(bytes.find('\0') != std::string_view::npos, "a text is closed within its field");
  requireClean(bytes.substr(0, bytes.find('\0')));
}

void serveFile(const tal::OpenFile& file) {
  TalFileInfo info;
  fill(info, file);
  require(file.name.size() < TAL_NAME_SIZE, "a file name fits its buffer");
  requireClean(file.name);
  for (const tal::FileHandle& handle : file.handles) {
    TalFileHandleInfo handleInfo;
    fill(handleInfo, handle);
    requireCleanField(handleInfo.clientName);
  }
}

void serveClient(const tal::Client& client) {
  tagTALCLIENTID id;
  fill(id, client);
  requireCleanField(id.text);
  TalClientInfo info;
  fill(info, client);
  requireCleanField(info.networkAddress);
  requireCleanField(info.sessionName);
  for (const tal::ClientHandle& handle : client.handles) {
    TalClientHandleInfo handleInfo;
    fill(handleInfo, handle);
    requireCleanField(handleInfo.fileName);
  }
}

}  // namespace

void requireClean(std::string_view field) {
  std::string cleaned(field);
  tal::fitText(cleaned, field.size());
  require(cleaned == field, "what is served is clean");
  for (const char byte : field) {
    require(static_cast<unsigned char>(byte) >= 0x20 && byte != 0x7f,
            "no control character is served");
  }
}

void serve(std::vector<tal::OpenFile> files) {
  tal::interface::FileSnapshot snapshot(std::move(files));
  for (std::uint32_t index = 0; index < snapshot.count(); ++index) {
    const tal::OpenFile& file = snapshot.at(index);
    require(&snapshot.find(file.name) == &file, "a file is found by its name");
    serveFile(file);
  }
}

void serve(std::vector<tal::Client> clients) {
  tal::interface::ClientSnapshot snapshot(std::move(clients));
  for (std::uint32_t index = 0; index < snapshot.count(); ++index) {
    const tal::Client& client = snapshot.at(index);
    tagTALCLIENTID id;
    fill(id, client);
    require(&snapshot.find(id) == &client, "a client is found by its identifier");
    serveClient(client);
  }
}

void serve(const std::vector<tal::SqlConnection>& connections) {
  for (const tal::SqlConnection& connection : connections) {
    TalSqlConnectionInfo info;
    fill(info, connection);
    requireCleanField(info.clientHost);
    requireCleanField(info.dataSource);
    requireCleanField(info.application);
    requireCleanField(info.networkAddress);
    requireCleanField(info.userName);
  }
}

void serve(const tal::Usage& usage) {
  TalUsage words;
  fill(words, usage);
  require(words.upTimeSeconds == usage.upTimeSeconds, "the last word is in its place");
}

void serve(const tal::Communication& communication) {
  TalCommStat words;
  fill(words, communication);
  require(words.protocolCount <= TAL_PROTOCOL_COUNT, "the protocols fit their structure");
}

}  // namespace fuzzing
