#pragma once

#include <memory>

#include "platform/uikit/UIViewController.h"
#include "sdk/Platform.h"

namespace kestrova {

// The end of a verification.
class CongratsViewController : public UIViewController {
 public:
  std::weak_ptr<UIView> verifiedBadgeContainer;

  void bind(UIBindings& bindings) override;
  void viewDidLoad() override;
  void viewWillAppear(bool animated) override;
  void viewWillDisappear(bool animated) override;
  void finishTapped(const std::shared_ptr<UIControl>& sender);
  void recordStepInBackend();
  void playCongratsGIF();
};

}  // namespace kestrova
