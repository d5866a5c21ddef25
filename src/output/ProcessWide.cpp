#include "output/ProcessWide.h"

#include <cstddef>
#include <utility>

#include "orv/io/OutputStreams.h"
#include "orv/io/Writers.h"

namespace {

constexpr std::size_t kWriterBufferSize = 2048;

// The standard streams have names in the user's language.
orv::String nameOf(const orv::String& target) {
  if (target == orv::io::kStandardOutput) return s_msgHelper->getResStr("STANDARD_OUTPUT");
  if (target == orv::io::kStandardError) return s_msgHelper->getResStr("STANDARD_ERROR");
  return target;
}

orv::String writeErrorText(const orv::String& target, const orv::String& reason) {
  return s_msgHelper->getResStr("ERR_WRITE_FILE", nameOf(target).toBytes().c_str(),
                                reason.toBytes().c_str());
}

}  // namespace

const char* const kProgramVersion = ZELK_VERSION;

orv::Reference<orv::io::PrintWriter> s_pw;
orv::Reference<orv::io::PrintWriter> s_errpw;
orv::Reference<MessageHelper> s_msgHelper;
bool m_JSON = false;

void createProcessWideObjects() {
  s_pw = newPrintWriter(orv::makeReference<orv::io::StdioOutputStream>(), true);
  s_errpw = newPrintWriter(orv::io::StdioOutputStream::getStdErrorStream(), true);
  s_msgHelper = orv::makeReference<MessageHelper>("ZELK", "ZELK_");
  orv::io::setWriteErrorText(writeErrorText);
}

orv::Reference<orv::io::PrintWriter> newPrintWriter(orv::Reference<orv::io::OutputStream> stream,
                                                    bool autoFlush) {
  auto writer =
      orv::makeReference<orv::io::OutputStreamWriter>(std::move(stream), kWriterBufferSize);
  return orv::makeReference<orv::io::PrintWriter>(std::move(writer), autoFlush);
}
