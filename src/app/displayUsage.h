// How the program is called.
#pragma once

// Prints the usage on standard output; in JSON form it also closes the document, which
// displayJSONHeader has opened. Throws orv::io::IoException.
void displayUsage(bool json);
