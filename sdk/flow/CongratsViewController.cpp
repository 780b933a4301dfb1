#include "sdk/flow/CongratsViewController.h"

#include "platform/dispatch/DispatchQueue.h"
#include "platform/foundation/Print.h"
#include "platform/uikit/UIBindings.h"
#include "platform/uikit/UINavigationController.h"
#include "sdk/backend/API.h"
#include "sdk/core/Kestrova.h"
#include "sdk/flow/Animations.h"

namespace kestrova {

void CongratsViewController::bind(UIBindings& bindings) {
  bindings.outlet("verifiedBadgeContainer", verifiedBadgeContainer);
  bindings.action("finishTapped:", shared(this), &CongratsViewController::finishTapped);
}

void CongratsViewController::viewDidLoad() {
  UIViewController::viewDidLoad();
  recordStepInBackend();
}

void CongratsViewController::recordStepInBackend() {
  if (!Kestrova::authentication_key) return print("Auth key not initialized");
  if (!Kestrova::apiKey) return print("Api key not initialized");
  DispatchQueue::global(DispatchQoS::background)
      .async([apiKey = *Kestrova::apiKey, authentication_key = *Kestrova::authentication_key] {
        API::checkAuthenticationDocumentSuccess(
            apiKey, authentication_key, [](const JSONDictionary& answer) {
              print("checkAuthenticationDocumentSuccess response: " + description(answer));
            });
      });
}

void CongratsViewController::viewWillAppear(bool animated) {
  UIViewController::viewWillAppear(animated);
  playCongratsGIF();
}

void CongratsViewController::playCongratsGIF() {
  if (const auto container = verifiedBadgeContainer.lock()) playGIF("verifiedBadge", *container);
}

void CongratsViewController::viewWillDisappear(bool animated) {
  UIViewController::viewWillDisappear(animated);
  if (const auto container = verifiedBadgeContainer.lock()) removeSubviews(*container);
}

void CongratsViewController::finishTapped(const std::shared_ptr<UIControl>&) {
  if (const auto navigation = navigationController()) navigation->endPresentation(true);
}

}  // namespace kestrova
