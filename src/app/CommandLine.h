// The command line.
#pragma once

#include "orv/String.h"

// Reads "-f <file> [-runonce]", in this order, and "-JSON" or "-json" anywhere. The latter sets
// m_JSON even if the rest is wrong. Sets `fileName`, and sets `runOnce` to true if the option is
// given. Returns 0, or 1 for a wrong command line.
int parseArgs(int argc, char** argv, orv::String& fileName, bool& runOnce);

// Prints the usage on standard output. In JSON form it also closes the document that
// displayJSONHeader has opened. Throws orv::io::IoException.
void displayUsage(bool json);
