#include "monitor/ReportText.h"

#include "util/Utils.h"

orv::String withBackslashesDoubled(orv::String name) {
  Utils::addBackslashChars(name, '\\');
  return name;
}
