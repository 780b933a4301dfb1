#include "platform/foundation/ProcessInfo.h"

#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace kestrova::platform {

std::optional<std::string> ProcessInfo::environment(const std::string& name) {
  const char* const value = std::getenv(name.c_str());  // NOLINT(concurrency-mt-unsafe)
  if (!value) return std::nullopt;
  return value;
}

std::string ProcessInfo::processName() {
  std::error_code error;
  auto name = std::filesystem::read_symlink("/proc/self/exe", error).filename().string();
  // What the system adds once the file was replaced, as by an upgrade.
  constexpr std::string_view deleted = " (deleted)";
  if (name.ends_with(deleted)) name.resize(name.size() - deleted.size());
  return name.empty() ? "application" : name;
}

}  // namespace kestrova::platform
