#include "platform/uikit/UITableViewCell.h"

#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/Canvas.h"

namespace kestrova::platform {

namespace {

constexpr double kFade = 0.3;
// The ground keeps away from the table's edges, which may be round.
constexpr double kSideMargin = 4;
constexpr double kMargin = 1;
constexpr double kRadius = 6;
constexpr double kRing = 2;

UIColor selection(double share) {
  return {232 / 255.0, 240 / 255.0, 1, share};
}
const UIColor kPressed{242 / 255.0, 244 / 255.0, 247 / 255.0, 1};
const UIColor kFocus{0, 0.34, 1, 1};

void appendTexts(const UIView& view, std::string& texts) {
  for (const auto& subview : view.subviews()) {
    if (subview->isHidden()) continue;
    const std::string text = subview->accessibilityLabel();
    if (text.empty()) {
      appendTexts(*subview, texts);
      continue;
    }
    if (!texts.empty()) texts += ", ";
    texts += text;
  }
}

// Fills the cell and lets touches through.
class RowRing : public UIView {
 public:
  RowRing() {
    setUserInteractionEnabled(false);
    fillSuperview();
  }

 protected:
  void draw(Canvas& canvas) override {
    if (const auto cell = superview()) canvas.stroke(cell->focusRect(), kFocus, kRing, kRadius);
  }
};

}  // namespace

UITableViewCell::UITableViewCell() {
  setAccessibilityRole(UIAccessibilityRole::listItem);
}

void UITableViewCell::setSelectionStyle(UITableViewCellSelectionStyle style) {
  selectionStyle_ = style;
  setNeedsDisplay();
}

void UITableViewCell::setSelected(bool selected, bool animated) {
  if (isSelected_ == selected && animated) return;
  isSelected_ = selected;
  const double to = selected ? 1 : 0;
  fade_ =
      AnimationClock::shared().ease(animated ? kFade : 0, [this, from = tint_, to](double share) {
        const double tint = from + (to - from) * share;
        if (tint_ == tint) return;
        tint_ = tint;
        setNeedsDisplay();
      });
}

void UITableViewCell::setHighlighted(bool highlighted, bool) {
  if (isHighlighted_ == highlighted) return;
  isHighlighted_ = highlighted;
  setNeedsDisplay();
}

void UITableViewCell::setKeyboardRow(bool isKeyboardRow) {
  if (!ring_ && !isKeyboardRow) return;
  if (!ring_) {
    ring_ = std::make_shared<RowRing>();
    ring_->setFrame({{}, bounds().size});
    addSubview(ring_);
  }
  ring_->setHidden(!isKeyboardRow);
}

CGRect UITableViewCell::focusRect() const {
  return CGRect{{}, bounds().size}.insetBy(kSideMargin, kMargin);
}

std::string UITableViewCell::accessibilityLabel() const {
  std::string label = UIView::accessibilityLabel();
  if (label.empty()) appendTexts(*this, label);
  return label;
}

void UITableViewCell::draw(Canvas& canvas) {
  if (selectionStyle_ == UITableViewCellSelectionStyle::none) return;
  const CGRect ground = CGRect{{}, bounds().size}.insetBy(kSideMargin, kMargin);
  if (tint_ > 0) canvas.fill(ground, selection(tint_), kRadius);
  if (isHighlighted_ && !isSelected_) canvas.fill(ground, kPressed, kRadius);
}

}  // namespace kestrova::platform
