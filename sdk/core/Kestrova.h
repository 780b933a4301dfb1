#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/foundation/Bundle.h"
#include "platform/foundation/Export.h"
#include "sdk/Platform.h"
#include "sdk/core/KestrovaErrors.h"

namespace kestrova::platform {
class UIViewController;
}

namespace kestrova {

// What a host application calls. All members are used on the main thread. A host calls initialize
// once and startVerification for each verification; the results live on the backend.
class KESTROVA_EXPORT Kestrova {
 public:
  Kestrova() = delete;

  // The verification state of the process: absent at first, never cleared, not persisted.
  static std::optional<std::string> apiKey;
  // Of the verification that was opened last and answered.
  static std::optional<std::string> authentication_key;
  // The backend's last word; no screen is chosen by it.
  static std::optional<std::string> next_step;
  // The host's to use: the SDK neither sets nor reads these four.
  static std::optional<std::string> step;
  static std::optional<std::string> message;
  static std::optional<std::string> status;
  static std::optional<std::string> response_code;
  // The address that the end user gave last.
  static std::optional<std::string> email;

  // Stores the integrator's key, unchecked; a later call replaces it.
  static void initialize(std::string key);

  // Opens an authentication on the backend and presents the flow over `from` without waiting for
  // the answer. Throws KestrovaError (notInitializedApiKey) before initialize, with nothing sent
  // and nothing presented. A call off the main thread does nothing but print a line.
  static void startVerification(const std::shared_ptr<UIViewController>& from);

  // The resource bundle Kestrova.bundle of the SDK, looked up anew on every call; none where it is
  // missing.
  static std::optional<Bundle> bundle();
};

}  // namespace kestrova
