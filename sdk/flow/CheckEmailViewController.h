#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "platform/foundation/NotificationCenter.h"
#include "platform/uikit/UITextFieldDelegate.h"
#include "platform/uikit/UIViewController.h"
#include "sdk/Platform.h"
#include "sdk/flow/LongWait.h"

namespace kestrova::platform {
class UIButton;
class UILabel;
class UIScrollView;
class UITextField;
}  // namespace kestrova::platform

namespace kestrova {

class SpinnerView;

// Where the user gives an e-mail address.
class CheckEmailViewController : public UIViewController, public UITextFieldDelegate {
 public:
  // The field while it is edited, and until then; none afterwards.
  std::weak_ptr<UITextField> emailTextfield;
  std::weak_ptr<UIScrollView> scrollView;
  std::weak_ptr<UIView> bottomRightImg;
  std::weak_ptr<UIButton> startButton;
  std::weak_ptr<SpinnerView> spinner;
  // Behind the spinner, over the rest of the screen.
  std::weak_ptr<UIView> veil;
  // Below the spinner: says that the response takes long, or will not come.
  std::weak_ptr<UILabel> waitLabel;
  // The field's text after the last edit.
  std::string emailAddress;

  void bind(UIBindings& bindings) override;
  void viewDidLoad() override;
  void viewWillAppear(bool animated) override;
  void viewWillDisappear(bool animated) override;

  void textFieldDidBeginEditing(UITextField& textField) override;
  void textFieldDidEndEditing(UITextField& textField) override;
  bool textFieldShouldReturn(UITextField& textField) override;
  void textFieldDidChange(const std::shared_ptr<UIControl>& sender);
  void nextButtonPressed(const std::shared_ptr<UIControl>& sender);
  void keyboardWasShown(const Notification& notification);
  void keyboardWillBeHidden(const Notification& notification);

  static bool isValidEmail(std::string_view text);
  void enterEmailAddress();
  void signupEmailToBackend(const std::string& apiKey, const std::string& authentication_key,
                            const std::string& email);
  // Shows or hides the spinner and its veil.
  void setWaiting(bool isWaiting);
  void startProcessAsNewUserAuthenticate();

 private:
  void hideBottomRightOnSmallDevices();
  void styleTextfieldAndButton();
  void registerForKeyboardNotifications();
  // Scrolls the edited field into sight, with the button where both fit.
  void showFieldAndButton();

  void signupFailed();

  AnimationClock::Token longWait_;
  // True while the spinner is shown.
  bool isWaiting_ = false;
  // Counts how often the screen was left. A response to an earlier visit's request is ignored.
  std::size_t visit_ = 0;
};

}  // namespace kestrova
