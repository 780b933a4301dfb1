#include "sdk/flow/CheckEmailViewController.h"

#include <optional>

#include "platform/foundation/Print.h"
#include "platform/foundation/Text.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIAlertController.h"
#include "platform/uikit/UIBindings.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIKeyboard.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UITextField.h"
#include "sdk/backend/API.h"
#include "sdk/core/Kestrova.h"
#include "sdk/flow/EmailAddress.h"
#include "sdk/flow/Segues.h"
#include "sdk/ui/DeviceModel.h"
#include "sdk/ui/Extensions.h"
#include "sdk/ui/SpinnerView.h"

namespace kestrova {

namespace {

// None where the notification carries no frame.
std::optional<double> keyboardHeight(const Notification& notification) {
  const auto found = notification.userInfo.find(UIKeyboardFrameBeginUserInfoKey);
  if (found == notification.userInfo.end()) return std::nullopt;
  const auto* frame = std::any_cast<CGRect>(&found->second);
  return frame ? std::optional(frame->size.height) : std::nullopt;
}

void setInsets(UIScrollView& scrollView, double bottom) {
  const UIEdgeInsets insets{0, 0, bottom, 0};
  scrollView.setContentInset(insets);
  scrollView.setScrollIndicatorInsets(insets);
}

}  // namespace

void CheckEmailViewController::bind(UIBindings& bindings) {
  bindings.outlet("emailTextfield", emailTextfield);
  bindings.outlet("scrollView", scrollView);
  bindings.outlet("bottomRightImg", bottomRightImg);
  bindings.outlet("startButton", startButton);
  bindings.outlet("spinner", spinner);
  bindings.outlet("veil", veil);
  bindings.outlet("waitLabel", waitLabel);
  bindings.action("nextButtonPressed:", shared(this), &CheckEmailViewController::nextButtonPressed);
}

void CheckEmailViewController::viewDidLoad() {
  UIViewController::viewDidLoad();
  hideBottomRightOnSmallDevices();
  styleTextfieldAndButton();
  if (const auto field = emailTextfield.lock()) {
    field->delegate = shared(this);
    field->addTarget(shared(this), &CheckEmailViewController::textFieldDidChange,
                     UIControlEvents::editingChanged);
  }
  hideKeyboardWhenTappedAround(shared(this));
  registerForKeyboardNotifications();
}

void CheckEmailViewController::viewWillAppear(bool animated) {
  UIViewController::viewWillAppear(animated);
  setWaiting(false);
}

void CheckEmailViewController::viewWillDisappear(bool animated) {
  UIViewController::viewWillDisappear(animated);
  ++visit_;
  auto& center = NotificationCenter::defaultCenter();
  center.removeObserver(this, UIKeyboardWillShowNotification);
  center.removeObserver(this, UIKeyboardWillHideNotification);
}

void CheckEmailViewController::hideBottomRightOnSmallDevices() {
  const auto decoration = bottomRightImg.lock();
  const std::string model = UIDeviceExtensions::modelName();
  if (decoration && (model == "iPhone 5s" || model == "iPhone 5c" || model == "iPhone 5")) {
    decoration->setHidden(true);
  }
}

void CheckEmailViewController::styleTextfieldAndButton() {
  if (const auto field = emailTextfield.lock()) {
    field->layer().setCornerRadius(8);
    field->layer().setBorderWidth(1.5);
    field->layer().setBorderColor(UIColorExtensions::borderColorGrey());
  }
  if (const auto button = startButton.lock()) {
    button->setEnabled(false);
    button->setBackgroundColor(UIColor::lightGray());
  }
}

void CheckEmailViewController::registerForKeyboardNotifications() {
  auto& center = NotificationCenter::defaultCenter();
  center.addObserver<CheckEmailViewController>(
      shared(this), &CheckEmailViewController::keyboardWasShown, UIKeyboardWillShowNotification);
  center.addObserver<CheckEmailViewController>(shared(this),
                                               &CheckEmailViewController::keyboardWillBeHidden,
                                               UIKeyboardWillHideNotification);
}

void CheckEmailViewController::textFieldDidBeginEditing(UITextField& textField) {
  if (const auto button = startButton.lock()) {
    button->setEnabled(true);
    button->setBackgroundColor(UIColorExtensions::kestrovaBlue());
  }
  emailTextfield = shared(&textField);
}

void CheckEmailViewController::textFieldDidEndEditing(UITextField&) {
  emailTextfield.reset();
}

bool CheckEmailViewController::textFieldShouldReturn(UITextField&) {
  enterEmailAddress();
  return true;
}

void CheckEmailViewController::textFieldDidChange(const std::shared_ptr<UIControl>& sender) {
  if (const auto field = std::dynamic_pointer_cast<UITextField>(sender)) {
    emailAddress = field->text();
  }
}

void CheckEmailViewController::nextButtonPressed(const std::shared_ptr<UIControl>&) {
  enterEmailAddress();
}

bool CheckEmailViewController::isValidEmail(std::string_view text) {
  return isEmailAddress(text);
}

void CheckEmailViewController::enterEmailAddress() {
  if (emailAddress.empty() || isWaiting_) return;
  const std::string email = trimmingWhitespacesAndNewlines(emailAddress);
  if (!isValidEmail(email)) {
    const auto alert =
        std::make_shared<UIAlertController>("Error", "Please enter a valid email address.");
    alert->addAction(std::make_shared<UIAlertAction>("OK", UIAlertActionStyle::standard));
    present(alert, true);
    return;
  }
  Kestrova::email = email;
  setWaiting(true);
  if (!Kestrova::apiKey) {
    print("Api key not initialized");
    performSegue(Segues::showErrorScreenfromEmail, shared(this));
    return;
  }
  if (!Kestrova::authentication_key) {
    print("Auth key not initialized");
    performSegue(Segues::showErrorScreenfromEmail, shared(this));
    return;
  }
  signupEmailToBackend(*Kestrova::apiKey, *Kestrova::authentication_key, email);
}

void CheckEmailViewController::signupEmailToBackend(const std::string& apiKey,
                                                    const std::string& authentication_key,
                                                    const std::string& email) {
  API::signupWithEmail(
      apiKey, authentication_key, email,
      [weak = std::weak_ptr(shared(this)), visit = visit_](const JSONDictionary& answer) {
        print("singup response: " + description(answer));
        const auto alive = weak.lock();
        if (alive && alive->visit_ == visit) alive->startProcessAsNewUserAuthenticate();
      },
      [weak = std::weak_ptr(shared(this)), visit = visit_](API::Failure) {
        const auto alive = weak.lock();
        if (alive && alive->visit_ == visit) alive->signupFailed();
      });
}

void CheckEmailViewController::setWaiting(bool isWaiting) {
  isWaiting_ = isWaiting;
  if (const auto waiting = spinner.lock()) waiting->setHidden(!isWaiting);
  if (const auto light = veil.lock()) light->setHidden(!isWaiting);
  if (const auto label = waitLabel.lock()) label->setHidden(true);
  longWait_ = isWaiting ? sayAfterLongWait(waitLabel) : nullptr;
}

// The spinner stays: the backend may have the address.
void CheckEmailViewController::signupFailed() {
  longWait_.reset();
  const auto label = waitLabel.lock();
  if (!label) return;
  label->setText("Your email wasn’t sent. Check the connection, then close and start again.");
  label->setHidden(false);
  postAccessibilityAnnouncement(*label, label->text());
}

void CheckEmailViewController::startProcessAsNewUserAuthenticate() {
  setWaiting(false);
  performSegue(Segues::showTakeSelfieVideo, shared(this));
}

void CheckEmailViewController::keyboardWasShown(const Notification& notification) {
  const auto height = keyboardHeight(notification);
  const auto scroll = scrollView.lock();
  if (!height || !scroll) return;
  scroll->setScrollEnabled(true);
  setInsets(*scroll, *height);
  CGRect visible = view()->frame();
  visible.size.height -= *height;
  const auto field = emailTextfield.lock();
  if (field && !visible.contains(field->frame().origin)) {
    scroll->scrollRectToVisible(field->frame(), true);
  }
  showFieldAndButton();
}

void CheckEmailViewController::showFieldAndButton() {
  const auto scroll = scrollView.lock();
  const auto field = emailTextfield.lock();
  const auto button = startButton.lock();
  if (!scroll || !field || !button) return;
  const CGPoint from = field->convert({}, scroll.get());
  const double bottom = button->convert({}, scroll.get()).y + button->bounds().size.height;
  scroll->scrollRectToVisible({from, {field->bounds().size.width, bottom - from.y}}, true);
}

void CheckEmailViewController::keyboardWillBeHidden(const Notification& notification) {
  const auto height = keyboardHeight(notification);
  const auto scroll = scrollView.lock();
  if (!height || !scroll) return;
  setInsets(*scroll, -*height);
  view()->endEditing(true);
  scroll->setScrollEnabled(false);
}

}  // namespace kestrova
