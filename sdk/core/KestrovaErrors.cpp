#include "sdk/core/KestrovaErrors.h"

namespace kestrova {

std::string KestrovaError::domain() const {
  return "Kestrova.KestrovaErrors";
}

const char* KestrovaError::what() const noexcept {
  switch (error_) {
    case KestrovaErrors::notInitializedApiKey:
      return "notInitializedApiKey";
    case KestrovaErrors::authenticationKeyNotInitialized:
      return "authenticationKeyNotInitialized";
  }
  return "KestrovaErrors";
}

}  // namespace kestrova
