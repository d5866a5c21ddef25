#include "tests/support/masking.h"

#include <array>
#include <string_view>

namespace testing_support {
namespace {

// In a form, "@@@" is a day of the week, "&&&" a month, "#" a digit, "%" a digit below 2 and "^"
// the first letter of AM or PM; every other character means itself. A placeholder has the length of
// its form.
struct Mask {
  std::string_view form;
  std::string_view placeholder;
};

constexpr std::array<Mask, 4> kMasks = {
    {
     {"<@@@ &&& ## %#:##:## UTC ####>\n", "<Ddd Mmm 00 00:00:00 UTC 0000>\n"},
     {"*** START RECORD %#/##/## %#:## ^M ***\n", "*** START RECORD 00/00/00 00:00 XM ***\n"},
     {"\n\t\"time\": \"####-##-##T##:##:##+0000\",\n",
         "\n\t\"time\": \"0000-00-00T00:00:00+0000\",\n"},
     {"\n\t\"start_record_time\": \"####-##-##T##:##:##+0000\",\n",
         "\n\t\"start_record_time\": \"0000-00-00T00:00:00+0000\",\n"},
     }
};

constexpr std::string_view kDays = "Sun Mon Tue Wed Thu Fri Sat";
constexpr std::string_view kMonths = "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec";

bool isIn(std::string_view names, std::string_view name) {
  return name.find(' ') == std::string_view::npos && names.find(name) != std::string_view::npos;
}

bool fits(char character, char form) {
  switch (form) {
    case '#':
      return character >= '0' && character <= '9';
    case '%':
      return character == '0' || character == '1';
    case '^':
      return character == 'A' || character == 'P';
    default:
      return character == form;
  }
}

// True if the text, which is as long as the form, matches it.
bool hasForm(std::string_view text, std::string_view form) {
  for (std::size_t i = 0; i < form.size(); ++i) {
    const bool isName = form[i] == '@' || form[i] == '&';
    const bool matches =
        isName ? isIn(form[i] == '@' ? kDays : kMonths, text.substr(i, 3)) : fits(text[i], form[i]);
    if (!matches) {
      return false;
    }
    i += isName ? 2 : 0;
  }
  return true;
}

}  // namespace

std::string maskTimes(std::string text) {
  for (const auto& [form, placeholder] : kMasks) {
    for (std::size_t at = 0; at + form.size() <= text.size(); ++at) {
      if (hasForm(std::string_view(text).substr(at, form.size()), form)) {
        text.replace(at, form.size(), placeholder);
      }
    }
  }
  return text;
}

}  // namespace testing_support
