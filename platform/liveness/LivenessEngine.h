#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/foundation/Export.h"
#include "platform/liveness/ZoomCustomization.h"
#include "platform/liveness/ZoomStatus.h"
#include "platform/liveness/ZoomVerificationDelegate.h"

namespace kestrova::platform {

class UIViewController;

// What stands behind the vendor's facade: an integrator's adapter to the library that the
// integrator has a licence for, or the development engine. Called on the main thread.
class KESTROVA_EXPORT LivenessEngine {
 public:
  virtual ~LivenessEngine() = default;

  // The capture screen is likely to be wanted soon. Comes before anything else, perhaps often.
  virtual void preload() = 0;
  // A PEM block.
  virtual void setFacemapEncryptionKey(const std::string& publicKey) = 0;
  // `completion` follows once, on any thread, also where the engine is initialised already; true on
  // success.
  virtual void initialize(const std::string& appToken,
                          std::function<void(bool success)> completion) = 0;
  virtual ZoomSDKStatus status() const = 0;
  // A screen for one run, to be presented over others; it goes by itself when the run has ended and
  // tells the delegate, which it does not keep alive; who holds it for the call on another thread
  // lets go of it on the main one, as it may be the last. A host may dismiss it earlier: the camera
  // is free then, and the delegate hears nothing more.
  virtual std::shared_ptr<UIViewController> makeCaptureScreen(
      const ZoomCustomization& customization, int auditTrailType,
      std::weak_ptr<ZoomVerificationDelegate> delegate) = 0;

  // The engine in use: the one that was set last, else the development engine. A null pointer sets
  // that again. To be set before a verification starts.
  static const std::shared_ptr<LivenessEngine>& current();
  static void setCurrent(std::shared_ptr<LivenessEngine> engine);
};

}  // namespace kestrova::platform
