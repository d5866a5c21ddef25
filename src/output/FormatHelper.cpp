#include "output/FormatHelper.h"

#include <algorithm>
#include <cstddef>
#include <utility>

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

void FormatHelper::putHeader(orv::String title, int tabs) {
  rule_.clear();
  rule_.append(title.length(), L'=');
  putData(rule_, tabs);
  putData(std::move(title).toUpper(), tabs);
  putData(rule_, tabs);
}

void FormatHelper::setIndent(int tabs) {
  indent_ = getTabStr(tabs);
  depth_ = tabs;
}
