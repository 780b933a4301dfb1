#include "doctor/Checks.h"

#include <array>

namespace kestrova::doctor {

std::span<const Check> checks() {
  static constexpr std::array kChecks{
      Check{"bundle", checkBundle, false},   Check{"display", checkDisplay, true},
      Check{"input", checkInput, true},      Check{"camera", checkCameras, false},
      Check{"media", checkMedia, true},      Check{"documents", checkDocuments, false},
      Check{"backend", checkBackend, false},
  };
  return kChecks;
}

}  // namespace kestrova::doctor
