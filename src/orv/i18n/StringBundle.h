// Texts by key, in the user's language.
#pragma once

#include <string>
#include <vector>

#include "orv/Collections.h"
#include "orv/Object.h"
#include "orv/String.h"

namespace orv::i18n {

// The texts of one bundle: the files NAME_ll_CC.properties, NAME_ll.properties and NAME.properties
// in the message folder. For each key they are searched in this order.
class StringBundle : public Object {
 public:
  // The bundle for a language such as "de_AT", or for several such as "fr:de", the best first. Null
  // means the locale of the process for messages; unless that is C, the variable LANGUAGE comes
  // before it. Each thread reads a bundle once. Throws ResultException if none of the files can be
  // read.
  static Reference<StringBundle> getBundle(const String& name, const char* locale);

  // Throws ResultException if no file has the key.
  [[nodiscard]] String getString(const String& key) const;

  // Sets the folder of the files, without a delimiter at the end. The default is
  // ../share/zelk/messages, relative to the folder of the running program. This thread reads its
  // bundles again.
  static void setFolder(String folder);

 private:
  static Reference<StringBundle> read(const String& name, const std::string& languages);

  std::vector<Reference<collections::StringHashMap>> files_;
};

// Reads one file of texts: lines of key=text, UTF-8. Throws ResultException if it is not a regular
// file or cannot be read.
Reference<collections::StringHashMap> readProperties(const String& path);

}  // namespace orv::i18n
