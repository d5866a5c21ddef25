#include "orv/util/FilePath.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "orv/Exception.h"

namespace orv::util {
namespace {

String checked(const std::filesystem::path& path, const std::error_code& error) {
  if (error) throw ResultException(resultOfErrno(error.value()));
  return String(std::string_view(path.native()));
}

}  // namespace

String FilePath::getCurrentDir() {
  std::error_code error;
  const auto path = std::filesystem::current_path(error);
  String folder = checked(path, error);
  if (!folder.wide().ends_with(dirDelim)) folder.append(1, dirDelim);
  return folder;
}

String FilePath::getProgramDir() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  return checked(program.parent_path(), error);
}

}  // namespace orv::util
