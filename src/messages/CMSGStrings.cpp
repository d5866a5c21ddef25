#include "messages/CMSGStrings.h"

#include <algorithm>
#include <string>
#include <utility>

#include "orv/Exception.h"
#include "orv/i18n/StringBundle.h"

namespace {

constexpr const char* kEngineBundle = "TALMSG";
constexpr const char* kDefaultPrefix = "ORV_MSG_";

bool isInstalled(const char* bundle) {
  try {
    return static_cast<bool>(orv::i18n::StringBundle::getBundle(bundle, nullptr));
  } catch (const orv::Exception&) {
    return false;
  }
}

}  // namespace

void CMSGStrings::MakeResourceString(const orv::String& bundle, orv::String key,
                                     orv::String& text) {
  try {
    text = orv::i18n::StringBundle::getBundle(bundle, nullptr)->getString(key);
  } catch (const orv::Exception&) {
    text = "The resource bundle is not installed";
  }
}

void CMSGStrings::MakeResString(const orv::String& prefix, const orv::String& key,
                                orv::String& text) {
  std::string name = key.trim().toBytes();
  std::replace(name.begin(), name.end(), '-', 'N');
  MakeResourceString(kEngineBundle, prefix + orv::String(std::move(name)), text);
}

void CMSGStrings::MakeResString(const orv::String& key, orv::String& text) {
  MakeResString(orv::String(kDefaultPrefix), key, text);
}

void CMSGStrings::MakeResString(const orv::String& prefix, int number, orv::String& text) {
  MakeResString(prefix, orv::String::valueOf(number), text);
}

void CMSGStrings::MakeResString(int number, orv::String& text) {
  MakeResString(orv::String(kDefaultPrefix), number, text);
}

void CMSGStrings::PrepareDialog(const orv::String& messageKey, const orv::String& titleKey,
                                orv::String& message, orv::String& title) {
  if (isInstalled(kEngineBundle)) {
    MakeResString(messageKey, message);
    MakeResString(titleKey, title);
  } else {
    message = "The TALMSG resource bundle is not installed";
    title = "TALMSG Resource Bundle Loading Error";
  }
}

void CMSGStrings::PrepareDialog(int messageNumber, const orv::String& titleKey,
                                orv::String& message, orv::String& title) {
  PrepareDialog(orv::String::valueOf(messageNumber), titleKey, message, title);
}
