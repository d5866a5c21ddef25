#include "output/FormatHelper.h"

#include <algorithm>
#include <cstddef>

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

void FormatHelper::putData(orv::String data, int tabs) {
  data.insert(0, countOf(tabs), L'\t');
  logger_->info(data);
}

void FormatHelper::putHeader(const orv::String& title, int tabs) {
  orv::String rule = getTabStr(tabs);
  rule.append(title.length(), L'=');
  logger_->info(rule);
  logger_->info(getTabStr(tabs) + title.toUpper());
  logger_->info(rule);
}
