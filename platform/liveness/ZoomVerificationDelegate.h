#pragma once

#include <optional>

#include "platform/foundation/Export.h"
#include "platform/liveness/ZoomVerificationResult.h"

namespace kestrova::platform {

// Who hears from the engine's capture screen. Either call may come on any thread.
class KESTROVA_EXPORT ZoomVerificationDelegate {
 public:
  virtual ~ZoomVerificationDelegate() = default;

  // Before the screen goes: true leaves it standing, for the delegate to dismiss.
  virtual bool onBeforeZoomDismiss(ZoomVerificationStatus status,
                                   std::optional<ZoomRetryReason> retryReason) = 0;
  // Once for each screen, when the run has ended.
  virtual void onZoomVerificationResult(const ZoomVerificationResult& result) = 0;
};

}  // namespace kestrova::platform
