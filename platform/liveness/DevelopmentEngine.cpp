#include "platform/liveness/DevelopmentEngine.h"

#include <utility>

#include "platform/dispatch/DispatchQueue.h"
#include "platform/liveness/DevelopmentScreen.h"

namespace kestrova::platform {

const std::shared_ptr<DevelopmentEngine>& DevelopmentEngine::shared() {
  static const auto engine = std::make_shared<DevelopmentEngine>();
  return engine;
}

void DevelopmentEngine::initialize(const std::string& appToken,
                                   std::function<void(bool)> completion) {
  const bool success = rehearsal_.initializes && !appToken.empty();
  if (success) {
    status_ = rehearsal_.isReady ? kReady : kNotReady;
  } else {
    status_ = kNotInitialized;
  }
  const auto queue = rehearsal_.answersElsewhere ? DispatchQueue::global(DispatchQoS::userInitiated)
                                                 : DispatchQueue::main();
  queue.async([completion = std::move(completion), success] { completion(success); });
}

std::shared_ptr<UIViewController> DevelopmentEngine::makeCaptureScreen(
    const ZoomCustomization& customization, int auditTrailType,
    std::weak_ptr<ZoomVerificationDelegate> delegate) {
  return std::make_shared<DevelopmentScreen>(
      DevelopmentScreen::Run{customization, auditTrailType == 1, rehearsal_, std::move(delegate)});
}

}  // namespace kestrova::platform
