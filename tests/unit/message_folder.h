// A message folder of a test's own.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "orv/Files.h"
#include "orv/i18n/StringBundle.h"
#include "tests/support/temporary_folder.h"

namespace testing_support {

// Message bundles are looked for in a new folder, which every user may read, while it lives; then
// again where the program's build has them.
class MessageFolder {
 public:
  MessageFolder() {
    using std::filesystem::perms;
    std::filesystem::permissions(folder_.path(), perms(0755));
    orv::i18n::StringBundle::setFolder(orv::String(folder_.path().string()));
  }
  MessageFolder(const MessageFolder&) = delete;
  MessageFolder& operator=(const MessageFolder&) = delete;
  ~MessageFolder() {
    orv::i18n::StringBundle::setFolder(orv::util::FilePath::getProgramDir() +
                                       "/../share/zelk/messages");
  }

  // Puts a file such as "ZELK_de.properties" into it.
  void add(const std::string& name, std::string_view bytes) const {
    writeFile(folder_ / name, bytes);
    orv::i18n::StringBundle::setFolder(orv::String(folder_.path().string()));  // is read again
  }

  [[nodiscard]] std::filesystem::path operator/(const std::string& name) const {
    return folder_ / name;
  }

 private:
  TemporaryFolder folder_;
};

}  // namespace testing_support
