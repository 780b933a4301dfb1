#include "platform/foundation/ProcessInfo.h"

#include <cstdlib>
#include <filesystem>

namespace kestrova::platform {

std::optional<std::string> ProcessInfo::environment(const std::string& name) {
  const char* const value = std::getenv(name.c_str());  // NOLINT(concurrency-mt-unsafe)
  if (!value) return std::nullopt;
  return value;
}

std::string ProcessInfo::processName() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? "application" : program.filename().string();
}

}  // namespace kestrova::platform
