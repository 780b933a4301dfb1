#include "doctor/Machine.h"

#include "platform/foundation/FileManager.h"
#include "platform/foundation/ProcessInfo.h"

namespace kestrova::doctor {

std::filesystem::path Machine::dataFolder() {
  const auto data = platform::ProcessInfo::environment("XDG_DATA_HOME");
  return data && data->starts_with('/') ? std::filesystem::path(*data)
                                        : platform::FileManager::expandingTilde("~/.local/share");
}

std::filesystem::path Machine::builtInAuthorities() {
  return platform::FileManager::expandingTilde(KESTROVA_BACKEND_CA);
}

}  // namespace kestrova::doctor
