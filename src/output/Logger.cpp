#include "output/Logger.h"

#include <algorithm>
#include <string>
#include <utility>

#include "orv/Exception.h"
#include "orv/Files.h"
#include "orv/io/OutputStreams.h"
#include "output/ProcessWide.h"
#include "util/Utils.h"

namespace {

struct NamedLevel {
  const char* name;
  Level level;
};

constexpr NamedLevel kNamedLevels[] = {
    {"SEVERE",  Level::kSevere },
    {"WARNING", Level::kWarning},
    {"INFO",    Level::kInfo   },
    {"CONFIG",  Level::kConfig },
    {"FINE",    Level::kFine   },
    {"FINER",   Level::kFiner  },
    {"FINEST",  Level::kFinest },
    {"ALL",     Level::kAll    },
};

// Puts the name of the current folder, if it has one, before a plain file name.
orv::String withFolder(const orv::String& path) {
  if (path.contains(orv::util::FilePath::dirDelim)) return path;
  try {
    return orv::util::FilePath::getCurrentDir() + path;
  } catch (const orv::ResultException&) {
    return path;
  }
}

orv::String withoutNul(const orv::String& path) {
  std::string shown = path.toBytes();
  std::replace(shown.begin(), shown.end(), '\0', '?');
  return orv::String(std::move(shown));
}

}  // namespace

Logger::Logger(const char* bundle, const char* prefix)
    : messages_(orv::makeReference<MessageHelper>(bundle, prefix)) {}

Logger::~Logger() {
  try {
    close();
  } catch (const orv::io::IoException&) {
    return;  // the run has failed before, or it would have closed the handlers itself
  }
}

void Logger::close() {
  for (const auto& handler : handlers_) handler->close();
}

void Logger::addStdOutHandler() { addHandler(orv::makeReference<orv::io::StdioOutputStream>()); }

void Logger::addFileHandler(const orv::String& path) {
  // The system would use only the part before a NUL byte as the name.
  if (path.contains('\0')) throwError(orv::kFileNotFound, withoutNul(path));
  if (orv::isPlanted(path)) throwError(orv::kAccessDenied, withFolder(path));
  const orv::Result code = Utils::createDirs(path);
  if (code != 0) throwError(code, path);
  try {
    addHandler(orv::makeReference<orv::io::FileOutputStream>(path, false));
  } catch (const orv::Exception& failure) {
    throwError(failure.getResult(), withFolder(path));
  }
}

void Logger::addHandler(orv::Reference<orv::io::OutputStream> stream) {
  handlers_.append(newPrintWriter(std::move(stream), false));
}

void Logger::setLevel(const orv::String& name) {
  level_ = Level::kOff;
  for (const NamedLevel& named : kNamedLevels) {
    if (name.equalsIgnoreCase(named.name)) level_ = named.level;
  }
}

void Logger::throwError(orv::Result code, const orv::String& path) const {
  if (code != orv::kAccessDenied && code != orv::kFileNotFound) throw orv::ResultException(code);
  const orv::String reason =
      messages_->getResStr(code == orv::kAccessDenied ? "ACCESS_ERROR" : "FILE_NOT_FOUND_ERROR");
  throw orv::io::IoException(messages_->getResStr("ERR_CREATE_FILE", path.toBytes().c_str(),
                                                  reason.toBytes().c_str(), code),
                             code);
}
