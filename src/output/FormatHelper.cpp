#include "output/FormatHelper.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace {

std::size_t countOf(int count) { return static_cast<std::size_t>(std::max(count, 0)); }

}  // namespace

orv::String FormatHelper::getTabStr(int count) {
  orv::String tabs;
  tabs.append(countOf(count), L'\t');
  return tabs;
}

void FormatHelper::padToLen(orv::String& text, int length) {
  const std::size_t wanted = countOf(length);
  if (text.length() < wanted) text.append(wanted - text.length(), L' ');
}

void FormatHelper::putError(const orv::String& message) { logger_->severe("ERROR! - " + message); }

void FormatHelper::putHeader(const orv::String& title, int tabs) {
  const auto putRule = [this, length = title.length(), tabs] {
    logger_->info(newLine(tabs).append(length, L'='));
  };
  putRule();
  putData(title.toUpper(), tabs);
  putRule();
}

orv::String& FormatHelper::newLine(int tabs) {
  constexpr std::string_view kTabs = "\t\t\t\t\t\t\t\t";
  line_.clear();
  for (std::size_t missing = countOf(tabs); missing > 0;) {
    const std::string_view part = kTabs.substr(0, missing);
    line_.append(part);
    missing -= part.size();
  }
  return line_;
}
