#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/foundation/Export.h"
#include "platform/liveness/LivenessEngine.h"

namespace kestrova::platform {

// Takes pictures of whatever is before the front camera and proves nothing about it: for
// development, tests and demonstrations. Takes every token but an empty one. Main thread.
class KESTROVA_EXPORT DevelopmentEngine : public LivenessEngine {
 public:
  // What it tells of a run; the names are its own.
  static constexpr ZoomSDKStatus kNotInitialized{0};
  static constexpr ZoomSDKStatus kReady{1};
  static constexpr ZoomSDKStatus kNotReady{2};
  static constexpr ZoomVerificationStatus kProcessed{0};
  static constexpr ZoomVerificationStatus kCancelled{1};
  static constexpr ZoomVerificationStatus kTimedOut{2};

  // What a host rehearses, beginning with the next call.
  struct Rehearsal {
    enum class Ending { processed, cancelled, timedOut, withoutFaceMetrics, withoutAuditTrail };

    bool initializes = true;
    bool isReady = true;
    // Of a run whose pictures have been taken.
    Ending ending = Ending::processed;
    std::optional<ZoomDevicePartialLivenessResult> livenessResult = std::nullopt;
    // Whether completions and results come on a thread other than the main one.
    bool answersElsewhere = false;
  };

  // The one that is in use where a host has set no engine.
  static const std::shared_ptr<DevelopmentEngine>& shared();

  void setRehearsal(const Rehearsal& rehearsal) { rehearsal_ = rehearsal; }

  void preload() override {}
  void setFacemapEncryptionKey(const std::string&) override {}
  void initialize(const std::string& appToken,
                  std::function<void(bool success)> completion) override;
  ZoomSDKStatus status() const override { return status_; }
  std::shared_ptr<UIViewController> makeCaptureScreen(
      const ZoomCustomization& customization, int auditTrailType,
      std::weak_ptr<ZoomVerificationDelegate> delegate) override;

 private:
  Rehearsal rehearsal_;
  ZoomSDKStatus status_ = kNotInitialized;
};

}  // namespace kestrova::platform
