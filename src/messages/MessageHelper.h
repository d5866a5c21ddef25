// Message texts by key.
#pragma once

#include <array>
#include <span>
#include <type_traits>

#include "messages/MessageFormat.h"
#include "orv/Object.h"
#include "orv/String.h"

// Looks up the texts of one bundle under one key prefix and fills them in printf style.
class MessageHelper : public orv::Object {
 public:
  MessageHelper(const char* bundle, const char* prefix) : bundle_(bundle), prefix_(prefix) {}

  // The text under prefix + key with the arguments filled in: narrow strings for %s, ints for
  // integer conversions. A text whose conversions do not fit the arguments is returned unchanged; a
  // missing bundle or key gives "The resource bundle is not installed". A text is cut to 1023
  // bytes, the result to 2047.
  template <class... Arguments>
  [[nodiscard]] orv::String getResStr(const char* key, Arguments... arguments) const {
    static_assert(((std::is_same_v<Arguments, const char*> || std::is_same_v<Arguments, int>)&&...),
                  "a message takes narrow strings and ints");
    return format(key, std::array<MessageArgument, sizeof...(Arguments)>{arguments...});
  }

 private:
  [[nodiscard]] orv::String format(const char* key,
                                   std::span<const MessageArgument> arguments) const;

  orv::String bundle_;
  orv::String prefix_;
};
