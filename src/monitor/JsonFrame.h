// The frame of the JSON document for the cases in which no monitoring run writes it.
#pragma once

#include <array>

#include "messages/MessageHelper.h"
#include "orv/String.h"

// The lines that open every JSON document, in order; the first begins with an empty line.
std::array<orv::String, 5> jsonHeaderLines(const MessageHelper& messages);

// Keeps the frame on standard output complete in every case; does nothing unless `json`. (0, 0)
// opens the document, unless one is open: then it only makes the next closing write its "}". (0, 1)
// hands the document to the monitoring run, which writes its own frame. (1, any) closes the
// document, unless the run has it. Throws orv::io::IoException.
void displayJSONHeader(bool json, int close, int mode);

// The monitoring run has closed its document: nothing is printed until the next closing.
void completeJsonDocument();
