#include "platform/uikit/UINavigationBar.h"

#include "platform/graphics/NSAttributedString.h"
#include "platform/graphics/NSLayoutManager.h"
#include "platform/uikit/Canvas.h"
#include "platform/uikit/TextLine.h"
#include "platform/uikit/UIBezierPath.h"
#include "platform/uikit/UIControl.h"

namespace kestrova::platform {

namespace {

constexpr double kTarget = 44;
constexpr double kSide = 8;
constexpr double kTitleSize = 17;
const UIColor kInk(16 / 255.0, 24 / 255.0, 40 / 255.0, 1);
const UIColor kPressed(0.95, 0.96, 0.97, 1);
const UIColor kGround = UIColor::white(0.98, 0.94);
const UIColor kHairline = UIColor::white(0, 0.3);

// A chevron that points to where one came from.
class BackButton : public UIControl {
 public:
  BackButton() {
    setFocusable(true);
    setAccessibilityLabel("Back");
    setAccessibilityRole(UIAccessibilityRole::button);
    layer().setCornerRadius(kTarget / 2);
  }

 protected:
  void draw(Canvas& canvas) override {
    const CGSize size = bounds().size;
    if (isHighlighted()) canvas.fill({{}, size}, kPressed, size.height / 2);
    constexpr double kHalf = 7;
    const CGPoint tip{size.width / 2 - 4, size.height / 2};
    UIBezierPath chevron;
    chevron.move({tip.x + kHalf, tip.y - kHalf});
    chevron.addLine(tip);
    chevron.addLine({tip.x + kHalf, tip.y + kHalf});
    canvas.stroke(chevron.cgPath(), kInk, 2);
  }
};

}  // namespace

void UINavigationBarAppearance::setBackgroundImage(const std::optional<UIImage>& image,
                                                   UIBarPosition, UIBarMetrics) {
  background_ = image;
}

void UINavigationBarAppearance::setShadowImage(const std::optional<UIImage>& image) {
  shadow_ = image;
}

UINavigationBarAppearance& UINavigationBar::appearance() {
  static UINavigationBarAppearance& appearance = *new UINavigationBarAppearance;
  return appearance;
}

UINavigationBar::UINavigationBar(std::function<void()> onBack)
    : back_(std::make_shared<BackButton>()) {
  back_->addAction(UIControlEvents::touchUpInside,
                   [onBack = std::move(onBack)](const auto&) { onBack(); });
  back_->setHidden(true);
  addSubview(back_);
}

void UINavigationBar::show(const UINavigationItem& item, bool offersBack) {
  item_ = item;
  back_->setHidden(!offersBack || item.hidesBackButton);
  setNeedsDisplay();
}

void UINavigationBar::layoutSubviews() {
  back_->setFrame({{kSide, (bounds().size.height - kTarget) / 2}, {kTarget, kTarget}});
}

std::shared_ptr<UIView> UINavigationBar::hitTest(CGPoint point) {
  const auto hit = UIView::hitTest(point);
  return hit.get() == this ? nullptr : hit;
}

void UINavigationBar::draw(Canvas& canvas) {
  const CGSize size = bounds().size;
  const auto& look = appearance();
  if (!look.backgroundImage()) {
    canvas.fill({{}, size}, kGround);
  } else if (const auto& image = *look.backgroundImage()) {
    canvas.draw(*image, {{}, size});
  }
  if (!look.shadowImage()) {
    canvas.fill({{0, size.height - 0.5}, {size.width, 0.5}}, kHairline);
  } else if (const auto& image = *look.shadowImage()) {
    const double height = image->size().height;
    canvas.draw(*image, {{0, size.height - height}, {size.width, height}});
  }
  if (item_.title.empty()) return;
  const UIFont font = UIFont::make("Exo-SemiBold", kTitleSize)
                          .value_or(UIFont::systemFont(kTitleSize, UIFont::kSemiboldWeight));
  const double margin = kSide + kTarget;
  NSLayoutManager manager;
  TextLine::lay(NSAttributedString(item_.title, {font, kInk, NSTextAlignment::center}),
                size.width - 2 * margin, manager);
  const double height = manager.usedRect().size.height;
  canvas.draw(manager, {margin, (size.height - height) / 2});
}

}  // namespace kestrova::platform
