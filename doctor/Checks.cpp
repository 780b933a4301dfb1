#include "doctor/Checks.h"

#include <array>

namespace kestrova::doctor {

std::span<const Check> checks() {
  static constexpr std::array kChecks{
      Check{"bundle", checkBundle, true},
      Check{"display", checkDisplay, true},
      Check{"input", checkInput, true},
      Check{"camera", checkCameras, true},
      Check{"media", checkMedia, true, &Machine::scanPatience},
      Check{"documents", checkDocuments, true},
      Check{"backend", checkBackend, false},
  };
  return kChecks;
}

}  // namespace kestrova::doctor
