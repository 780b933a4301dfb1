#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "platform/graphics/UIImage.h"
#include "platform/liveness/ZoomStatus.h"

namespace kestrova::platform {

// How one run of the engine has ended. A value.
struct ZoomVerificationResult {
  struct FaceMetrics {
    // Encrypted for the owner of the key that the engine was given.
    std::optional<std::vector<std::byte>> zoomFacemap;
    std::optional<ZoomDevicePartialLivenessResult> devicePartialLivenessResult;
    std::optional<float> devicePartialLivenessScore;
    std::optional<ZoomRetryReason> zoomRetryReason;
    // Pictures of the user, in the order in which they were taken.
    std::optional<std::vector<UIImage>> auditTrail;
    std::optional<std::vector<std::vector<UIImage>>> auditTrailHistory;
  };

  ZoomVerificationStatus status{};
  std::string sessionId;
  std::optional<FaceMetrics> faceMetrics;
};

}  // namespace kestrova::platform
