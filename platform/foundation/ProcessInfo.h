#pragma once

#include <optional>
#include <string>

namespace kestrova::platform {

struct ProcessInfo {
  // The value of an environment variable; none where it is not set.
  static std::optional<std::string> environment(const std::string& name);
  // The file name of the running program.
  static std::string processName();
};

}  // namespace kestrova::platform
