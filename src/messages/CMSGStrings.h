// Texts from a bundle, without formatting.
#pragma once

#include "orv/String.h"

// No operation throws for a missing bundle or key: the text then says so. The functions besides
// MakeResourceString serve tools that share the bundle TALMSG.
class CMSGStrings {
 public:
  CMSGStrings() = delete;

  static void MakeResourceString(const orv::String& bundle, orv::String key, orv::String& text);

  // From TALMSG, under prefix + key; the key is trimmed, and "-" in it reads as "N", so that a
  // negative number can be a key. Without a prefix it is "ORV_MSG_".
  static void MakeResString(const orv::String& prefix, const orv::String& key, orv::String& text);
  static void MakeResString(const orv::String& key, orv::String& text);
  static void MakeResString(const orv::String& prefix, int number, orv::String& text);
  static void MakeResString(int number, orv::String& text);

  // A dialog's message and title from TALMSG; if the bundle cannot be loaded, both say so.
  static void PrepareDialog(const orv::String& messageKey, const orv::String& titleKey,
                            orv::String& message, orv::String& title);
  static void PrepareDialog(int messageNumber, const orv::String& titleKey, orv::String& message,
                            orv::String& title);
};
