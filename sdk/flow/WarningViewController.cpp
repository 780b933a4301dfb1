#include "sdk/flow/WarningViewController.h"

#include "platform/uikit/UIBindings.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UINavigationController.h"
#include "sdk/flow/CheckEmailViewController.h"
#include "sdk/flow/ChooseCitizenViewController.h"
#include "sdk/flow/ChooseDocumentTypeViewController.h"

namespace kestrova {

void WarningViewController::bind(UIBindings& bindings) {
  bindings.outlet("leaveButton", leaveButton);
  bindings.outlet("messageLabel", messageLabel);
  bindings.action("leaveTapped:", shared(this), &WarningViewController::leaveTapped);
}

void WarningViewController::viewDidLoad() {
  UIViewController::viewDidLoad();
  const auto button = leaveButton.lock();
  const auto message = messageLabel.lock();
  if (canTryAgain()) {
    if (message) message->setText(message->text() + " Please try again.");
  } else if (button) {
    button->setTitle("Close");
  }
}

// Enter must not leave the flow.
std::shared_ptr<UIView> WarningViewController::preferredFocusView() {
  return canTryAgain() ? UIViewController::preferredFocusView() : nullptr;
}

bool WarningViewController::canTryAgain() const {
  const auto navigation = navigationController();
  if (!navigation) return false;
  const auto& stack = navigation->viewControllers();
  if (stack.size() < 2) return false;
  // The screen below this one.
  const auto* below = stack[stack.size() - 2].get();
  return dynamic_cast<const ChooseCitizenViewController*>(below) ||
         dynamic_cast<const CheckEmailViewController*>(below) ||
         dynamic_cast<const ChooseDocumentTypeViewController*>(below);
}

void WarningViewController::leaveTapped(const std::shared_ptr<UIControl>&) {
  if (canTryAgain()) {
    navigationController()->popViewController(true);
  } else {
    endPresentation(true);
  }
}

}  // namespace kestrova
