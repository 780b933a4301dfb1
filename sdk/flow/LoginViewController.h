#pragma once

#include <memory>

#include "platform/uikit/UIViewController.h"
#include "sdk/Platform.h"

namespace kestrova {

// A screen that no way of the flow leads to.
class LoginViewController : public UIViewController {
 public:
  void bind(UIBindings& bindings) override;
  void viewDidLoad() override;
  void tryToOpenKestrovaTapped(const std::shared_ptr<UIControl>& sender);
};

}  // namespace kestrova
