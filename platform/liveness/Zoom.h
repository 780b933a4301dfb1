#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/liveness/ZoomCustomization.h"
#include "platform/liveness/ZoomStatus.h"
#include "platform/liveness/ZoomVerificationDelegate.h"

namespace kestrova::platform {

class UIViewController;

// The liveness vendor's interface, as far as the flow uses it. Forwards to the LivenessEngine in
// use. Main thread.
class Zoom {
 public:
  static Zoom& sdk();

  void preload();
  void setFacemapEncryptionKey(const std::string& publicKey);
  // `completion` gets true where the engine takes the token; on any thread.
  void initialize(const std::string& appToken, std::function<void(bool success)> completion);
  ZoomSDKStatus getStatus() const;
  // 1: results carry pictures of the user.
  int auditTrailType = 0;
  void setCustomization(const ZoomCustomization& customization);
  // The engine's capture screen, for one run.
  std::shared_ptr<UIViewController> createVerificationVC(
      std::weak_ptr<ZoomVerificationDelegate> delegate);

 private:
  Zoom() = default;

  ZoomCustomization customization_;
};

}  // namespace kestrova::platform
