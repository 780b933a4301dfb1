#include "platform/capture/CameraControlsView.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "platform/uikit/Canvas.h"
#include "platform/uikit/UIBezierPath.h"

namespace kestrova::platform {

namespace {

constexpr double kHeight = 132;
constexpr double kFlatHeight = 96;
constexpr double kFlatScreen = 480;
constexpr double kShutter = 72;
constexpr double kRing = 4;
constexpr double kWide = 360;
constexpr double kMargin = 24;
constexpr double kNarrowMargin = 20;
constexpr double kButtonHeight = 52;
constexpr double kButtonWidth = 200;
constexpr double kBetween = 12;
constexpr double kSideButton = 88;
constexpr double kRadius = 8;
constexpr double kUnavailable = 0.35;
// As wide as the pair of buttons and the controls may spread on a large screen.
constexpr double kSpread = 480;
const UIColor kBlue(0, 0.34, 1, 1);
const UIColor kQuiet = UIColor::white(1, 0.16);
const UIColor kLit(1, 0.84, 0.04, 1);

UIFont font() {
  constexpr double kSize = 17;
  return UIFont::make("Exo-SemiBold", kSize)
      .value_or(UIFont::systemFont(kSize, UIFont::kSemiboldWeight));
}

const char* nameOf(CameraFlashMode mode) {
  switch (mode) {
    case CameraFlashMode::off:
      return "Off";
    case CameraFlashMode::automatic:
      return "Auto";
    case CameraFlashMode::on:
      return "On";
  }
  return "";
}

}  // namespace

// A white disc in a ring.
class CameraControlsView::Shutter : public UIButton {
 public:
  Shutter() {
    setAccessibilityLabel("Take photo");
    layer().setCornerRadius(kShutter / 2);
  }

 protected:
  void draw(Canvas& canvas) override {
    const CGRect all{{}, bounds().size};
    const double inset = kRing + (isHighlighted() ? 6 : 3);
    if (!isEnabled()) canvas.setOpacity(kUnavailable);
    canvas.stroke(all, UIColor::white(), kRing, kShutter / 2);
    canvas.fill(all.insetBy(inset, inset), UIColor::white(), kShutter / 2);
  }
};

// A bolt and the mode's name.
class CameraControlsView::FlashSwitch : public UIButton {
 public:
  FlashSwitch() {
    setTitleFont(font());
    setTitleColor(UIColor::white());
    setContentInset(kBolt);
    setMode(CameraFlashMode::automatic);
  }

  void setMode(CameraFlashMode mode) {
    mode_ = mode;
    setTitle(nameOf(mode));
    setAccessibilityLabel(std::string("Flash: ") + nameOf(mode));
    setTitleColor(mode == CameraFlashMode::on ? kLit : UIColor::white());
  }

 protected:
  void draw(Canvas& canvas) override {
    UIButton::draw(canvas);
    const double middle = bounds().size.height / 2;
    const auto at = [middle](double x, double y) { return CGPoint{x + 4, middle + y}; };
    UIBezierPath bolt;
    bolt.move(at(8, -10));
    for (const CGPoint each : {at(0, 2), at(6, 2), at(4, 10), at(12, -2), at(6, -2)}) {
      bolt.addLine(each);
    }
    bolt.addLine(at(8, -10));
    const UIColor color = titleColor();
    if (mode_ == CameraFlashMode::off) {
      canvas.stroke(bolt.cgPath(), color, 1.5);
      UIBezierPath line;
      line.move(at(0, -9));
      line.addLine(at(13, 9));
      canvas.stroke(line.cgPath(), color, 2);
    } else {
      canvas.fill(bolt.cgPath(), color);
    }
  }

 private:
  static constexpr double kBolt = 20;

  CameraFlashMode mode_ = CameraFlashMode::automatic;
};

template <typename Button>
std::shared_ptr<Button> CameraControlsView::add(
    std::function<void()> CameraControlsView::*handler) {
  auto button = std::make_shared<Button>();
  button->addAction(UIControlEvents::touchUpInside,
                    [this, handler](const std::shared_ptr<UIControl>&) {
                      // The button's superview is here as long as it can be pressed.
                      const auto call = this->*handler;
                      if (call) call();
                    });
  addSubview(button);
  return button;
}

CameraControlsView::CameraControlsView()
    : cancel_(add<UIButton>(&CameraControlsView::onCancel)),
      shutter_(add<Shutter>(&CameraControlsView::onShutter)),
      flash_(add<FlashSwitch>(&CameraControlsView::onFlash)),
      retake_(add<UIButton>(&CameraControlsView::onRetake)),
      use_(add<UIButton>(&CameraControlsView::onUse)) {
  cancel_->setTitle("Cancel");
  use_->setTitle("Use photo");
  use_->setBackgroundColor(kBlue);
  for (const auto& button : {cancel_, retake_, use_}) {
    button->setTitleFont(font());
    button->setTitleColor(UIColor::white());
    button->layer().setCornerRadius(kRadius);
  }
  setState(State::opening);
}

double CameraControlsView::height(double screen) {
  return screen < kFlatScreen ? kFlatHeight : kHeight;
}

void CameraControlsView::setState(State state) {
  state_ = state;
  const bool isTaken = state == State::taken;
  const bool isFailed = state == State::failed;
  cancel_->setHidden(isTaken);
  shutter_->setHidden(isTaken || isFailed);
  shutter_->setEnabled(state == State::live);
  flash_->setHidden(isTaken || isFailed || !hasFlash_);
  flash_->setEnabled(state == State::live);
  use_->setHidden(!isTaken);
  retake_->setHidden(!isTaken && !isFailed);
  retake_->setTitle(isFailed ? "Try again" : "Retake");
  // Of the two buttons the second is the way on.
  retake_->setBackgroundColor(isFailed ? kBlue : kQuiet);
  cancel_->setBackgroundColor(isFailed ? kQuiet : UIColor::clear());
  setNeedsLayout();
}

void CameraControlsView::setFlash(bool hasFlash, CameraFlashMode mode) {
  hasFlash_ = hasFlash;
  flash_->setMode(mode);
  setState(state_);
}

std::shared_ptr<UIView> CameraControlsView::primaryControl() const {
  switch (state_) {
    case State::opening:
    case State::taking:
      break;
    case State::live:
      return shutter_;
    case State::taken:
      return use_;
    case State::failed:
      return retake_;
  }
  return nullptr;
}

void CameraControlsView::layoutSubviews() {
  const CGSize size = bounds().size;
  const double margin = size.width < kWide ? kNarrowMargin : kMargin;
  const double width = std::min(size.width - 2 * margin, kSpread);
  const double left = std::round((size.width - width) / 2);
  const double middle = std::round(size.height / 2);
  const double top = middle - kButtonHeight / 2;
  const double side = std::min(kSideButton, (width - kShutter) / 2);
  // The words' ends lie on the margins.
  cancel_->setContentInset(0);
  const double word = std::ceil(cancel_->sizeThatFits({}).width);
  cancel_->setFrame({{left, top}, {std::min(side, word), kButtonHeight}});
  shutter_->setFrame(
      {{std::round((size.width - kShutter) / 2), middle - kShutter / 2}, {kShutter, kShutter}});
  flash_->setFrame({{left + width - side, top}, {side, kButtonHeight}});
  const double each = std::min(kButtonWidth, std::floor((width - kBetween) / 2));
  const double start = std::round((size.width - 2 * each - kBetween) / 2);
  const auto& [first, second] =
      state_ == State::failed ? std::tie(cancel_, retake_) : std::tie(retake_, use_);
  first->setFrame({{start, top}, {each, kButtonHeight}});
  second->setFrame({{start + each + kBetween, top}, {each, kButtonHeight}});
}

}  // namespace kestrova::platform
