#include "app/displayUsage.h"

#include "output/ProcessWide.h"

void displayUsage(bool json) {
  if (!json) {
    s_pw->println(s_msgHelper->getResStr("USAGE"));
    return;
  }
  s_pw->println("\t\"usage\":");
  s_pw->println("\t[");
  s_pw->println("\t\t\"zelk -f <path>config_file [-runonce] [-JSON]\"");
  s_pw->println("\t]");
  s_pw->println("}");
}
