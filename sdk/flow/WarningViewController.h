#pragma once

#include <memory>

#include "platform/uikit/UIViewController.h"
#include "sdk/Platform.h"

namespace kestrova::platform {
class UIButton;
class UILabel;
}  // namespace kestrova::platform

namespace kestrova {

// Says that the verification cannot go on. Its button leads back where the screen below can be used
// again, else out of the flow.
class WarningViewController : public UIViewController {
 public:
  std::weak_ptr<UIButton> leaveButton;
  std::weak_ptr<UILabel> messageLabel;

  void bind(UIBindings& bindings) override;
  void viewDidLoad() override;
  std::shared_ptr<UIView> preferredFocusView() override;
  void leaveTapped(const std::shared_ptr<UIControl>& sender);
  // True when the screen below can be used again.
  bool canTryAgain() const;
};

}  // namespace kestrova
