// The command line.
#pragma once

#include "orv/String.h"

// Reads "-f <file> [-runonce]", in this order, and "-JSON" or "-json" anywhere, which sets m_JSON
// also when the rest is wrong. Sets `fileName`, and `runOnce` to true where it is asked for.
// Returns 0, or 1 for a command line that is not accepted.
int parseArgs(int argc, char** argv, orv::String& fileName, bool& runOnce);

// Prints the usage on standard output; in JSON form it also closes the document, which
// displayJSONHeader has opened. Throws orv::io::IoException.
void displayUsage(bool json);
