// What the whole process shares. It is declared here, in the lowest layer that uses it.
#pragma once

#include "messages/MessageHelper.h"
#include "orv/Object.h"
#include "orv/io/OutputStreams.h"
#include "orv/io/Writers.h"

// Four numbers, such as "15.21.016.000".
extern const char* const kProgramVersion;

// Standard output and standard error, flushed with each line, and the program's own messages. Null
// until createProcessWideObjects().
extern orv::Reference<orv::io::PrintWriter> s_pw;
extern orv::Reference<orv::io::PrintWriter> s_errpw;
extern orv::Reference<MessageHelper> s_msgHelper;

// JSON output was requested.
extern bool m_JSON;

// Creates the three objects above. From then on a failed write is described in the user's
// language.
void createProcessWideObjects();

// A writer in the default encoding with a buffer of 2048 characters.
orv::Reference<orv::io::PrintWriter> newPrintWriter(orv::Reference<orv::io::OutputStream> stream,
                                                    bool autoFlush);
