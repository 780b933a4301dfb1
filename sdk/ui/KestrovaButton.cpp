#include "sdk/ui/KestrovaButton.h"

#include <utility>

#include "platform/foundation/Print.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIBindings.h"
#include "platform/uikit/UIDevice.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIViewController.h"
#include "sdk/core/Kestrova.h"
#include "sdk/ui/Extensions.h"
#include "sdk/ui/KestrovaButtonHelper.h"

namespace kestrova {

namespace {

constexpr double kCaptionSize = 17;
constexpr double kCornerRadius = 5;
constexpr double kBorderWidth = 1;
constexpr double kBorderGrey = 213.0 / 255;

UIColor borderColor() {
  return UIDevice::current().hasSystemVersion(10)
             ? UIColor::displayP3(kBorderGrey, kBorderGrey, kBorderGrey, 1)
             : UIColor(kBorderGrey, kBorderGrey, kBorderGrey, 1);
}

}  // namespace

std::shared_ptr<UIViewController> KestrovaButton::buttonContainer;
KestrovaButton::StartFailureHandler KestrovaButton::startFailed;

void KestrovaButton::setContainer(const std::shared_ptr<UIViewController>& container) {
  releaseAtExit();
  buttonContainer = container;
}

void KestrovaButton::setStartFailureHandler(StartFailureHandler handler) {
  releaseAtExit();
  startFailed = std::move(handler);
}

// A controller's views may not outlive the application object.
void KestrovaButton::releaseAtExit() {
  static bool isArranged = false;
  if (std::exchange(isArranged, true)) return;
  UIApplication::atExit([] {
    isArranged = false;
    buttonContainer.reset();
    startFailed = nullptr;
  });
}

void KestrovaButton::bind(UIBindings& bindings) {
  bindings.outlet("view", view);
  bindings.outlet("label", label);
}

std::shared_ptr<UIView> KestrovaButton::awakeAfter() {
  return loadFromNibIfEmbeddedInDifferentNib(shared(this));
}

void KestrovaButton::awakeFromNib() {
  UIButton::awakeFromNib();
  setUp();
  addTarget(shared(this), &KestrovaButton::tapped, UIControlEvents::touchUpInside);
}

void KestrovaButton::setUp() {
  UIFontExtensions::loadMyFonts();
  if (const auto caption = label.lock()) {
    caption->setFont(UIFont::make("Exo-SemiBold", kCaptionSize));
  }
  layer().setMasksToBounds(true);
  layer().setCornerRadius(kCornerRadius);
  layer().setBorderWidth(kBorderWidth);
  layer().setBorderColor(borderColor());
  setBackgroundColor(UIColor::white());
  if (view) view->setHidden(true);
}

void KestrovaButton::buttonTapped(const std::shared_ptr<UIControl>&) {
  const auto from = buttonContainer ? buttonContainer : parentViewController(*this);
  if (!from) return print("Super view and container are both nil.");
  Kestrova::startVerification(from);
}

void KestrovaButton::tapped(const std::shared_ptr<UIControl>& sender) {
  try {
    buttonTapped(sender);
  } catch (const KestrovaError& error) {
    print(std::string("Kestrova: the verification cannot be started: ") + error.what());
    // A copy: the handler may set another one.
    if (const auto handler = startFailed) handler(error);
  }
}

}  // namespace kestrova
