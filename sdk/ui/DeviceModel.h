#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "sdk/Platform.h"

namespace kestrova {

struct UIDeviceExtensions {
  // The marketing name of the device that the SDK runs on, of the simulated one after "Simulator "
  // on a simulator. Computed at first use and kept. Any thread.
  static std::string modelName();
  // The name of a hardware identifier; an unknown one is its own name.
  static std::string mapToDevice(std::string_view identifier);

  // Takes `identifier` for the machine's, none for the real one again, and forgets the name. For
  // tests.
  static void setMachineIdentifier(std::optional<std::string> identifier);
};

}  // namespace kestrova
