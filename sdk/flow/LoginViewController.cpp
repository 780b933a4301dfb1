#include "sdk/flow/LoginViewController.h"

#include "platform/uikit/UIBindings.h"
#include "sdk/ui/Extensions.h"

namespace kestrova {

void LoginViewController::bind(UIBindings& bindings) {
  bindings.action("tryToOpenKestrovaTapped:", shared(this),
                  &LoginViewController::tryToOpenKestrovaTapped);
}

void LoginViewController::viewDidLoad() {
  UIViewController::viewDidLoad();
  hideKeyboardWhenTappedAround(shared(this));
}

void LoginViewController::tryToOpenKestrovaTapped(const std::shared_ptr<UIControl>&) {}

}  // namespace kestrova
